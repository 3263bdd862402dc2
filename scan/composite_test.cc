#include "scan/composite.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace tapforge {
namespace {

// Gives a pattern random values of `length` bits, all or only a TDI.
void fill(CTapPattern& pattern, std::int64_t length, bool all, std::mt19937& random) {
  ScanValues given;
  for (const auto& [value, word, fill] : kScanValues) {
    if (length == 0 || (!all && value != ScanValue::tdi)) continue;
    given.add(value);
    CTapField& field = pattern.storage(value);
    field.initTapField(length);
    // Bits above the length must do no harm.
    for (std::int64_t i = field.lNumChars(); i-- > 0;) field.setTapDataChar(i, random() % 16);
  }
  EXPECT_TRUE(pattern.setPattern(0, {}) && pattern.setPattern(length, given));
}

// Bits as characters, bit 0 first.
std::string plain(const CTapPattern& pattern, ScanValue value, char filler) {
  std::string bits(static_cast<std::size_t>(pattern.lLength()), filler);
  for (std::size_t i = 0; i < bits.size() && pattern[value] != nullptr; ++i) {
    const unsigned digit = pattern[value]->getTapDataChar(static_cast<std::int64_t>(i / 4));
    bits[i] = (digit >> (i % 4) & 1) != 0 ? '1' : '0';
  }
  return bits;
}

std::string plain(std::uint64_t bits) {
  std::string text;
  for (int i = 0; i < 64; ++i) text += (bits >> i & 1) != 0 ? '1' : '0';
  return text;
}

TEST(CompositeScan, IsHeaderDataAndTrailerBitByBit) {
  CTapPattern head;
  CTapPattern data;
  CTapPattern trail;
  RegisterScan scan(head, data, trail);
  std::mt19937 random(1);
  constexpr std::int64_t kHead[] = {0, 1, 30, 64, 65};
  constexpr std::int64_t kData[] = {1, 34, 63, 64, 65, 131};
  constexpr std::int64_t kTrail[] = {0, 30, 67};
  for (unsigned i = 0; i < 5 * 6 * 3 * 8; ++i) {
    fill(head, kHead[i % 5], (i / 90 & 1) != 0, random);
    fill(data, kData[i % 6], (i / 90 & 2) != 0, random);
    fill(trail, kTrail[i / 30 % 3], (i / 90 & 4) != 0, random);
    scan.frameChanged();
    const std::int64_t length = scan.length();
    ASSERT_EQ(length, head.lLength() + data.lLength() + trail.lLength());
    for (const auto& [value, word, fill] : kScanValues) {
      const char filler = value == ScanValue::tdi || value == ScanValue::smask ? '1' : '0';
      const std::string expected = plain(head, value, filler) + plain(data, value, '1') +
                                   plain(trail, value, filler) + std::string(64, '0');
      const CompositeScan bits(scan, value, length);
      for (std::int64_t low = 0; low < length; low += low % 3 + 1) {
        ASSERT_EQ(plain(bits(low)), expected.substr(static_cast<std::size_t>(low), 64));
      }
      if (length > 64) continue;
      EXPECT_EQ(plain(scan.shortBits(value)), expected.substr(0, 64));
    }
    const CompositeScan alone({data.pTdi()}, data.lLength());
    EXPECT_EQ(plain(alone(0)),
              (plain(data, ScanValue::tdi, ' ') + std::string(64, '0')).substr(0, 64));
  }
}

}  // namespace
}  // namespace tapforge

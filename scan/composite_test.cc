#include "scan/composite.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>

namespace tapforge {
namespace {

// Gives a pattern random values of `length` bits, all or only a TDI.
void fill(CTapPattern& pattern, std::int64_t length, bool all, std::mt19937& random) {
  ScanValues given;
  for (const ScanValue value : kScanValues) {
    if (length == 0 || (!all && value != ScanValue::tdi)) continue;
    given.add(value);
    CTapField& field = pattern.storage(value);
    field.initTapField(length);
    // With bits above the length, which must do no harm.
    for (std::int64_t i = 0; i < field.lNumChars(); ++i) field.setTapDataChar(i, random() % 16);
    field.setStart(0);
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
  for (const std::int64_t headBits : {0, 1, 30, 64, 65}) {
    for (const std::int64_t dataBits : {1, 34, 63, 64, 65, 131}) {
      for (const std::int64_t trailBits : {0, 30, 67}) {
        for (unsigned all = 0; all < 8; ++all) {
          fill(head, headBits, (all & 1) != 0, random);
          fill(data, dataBits, (all & 2) != 0, random);
          fill(trail, trailBits, (all & 4) != 0, random);
          scan.frameChanged();
          const std::int64_t length = scan.length();
          ASSERT_EQ(length, headBits + dataBits + trailBits);
          for (const ScanValue value : kScanValues) {
            const bool drives = value == ScanValue::tdi || value == ScanValue::smask;
            const char filler = drives ? '1' : '0';
            const std::string expected = plain(head, value, filler) + plain(data, value, '1') +
                                         plain(trail, value, filler) + std::string(64, '0');
            const CompositeScan bits(scan, value, length);
            for (std::int64_t low = 0; low < length; low += low % 3 + 1) {
              ASSERT_EQ(plain(bits(low)), expected.substr(static_cast<std::size_t>(low), 64));
            }
            if (length > 64) continue;
            ASSERT_EQ(plain(scan.shortBits(value)), expected.substr(0, 64));
          }
          const CompositeScan alone(*data.pTdi(), dataBits);
          const std::string expected = plain(data, ScanValue::tdi, ' ') + std::string(64, '0');
          ASSERT_EQ(plain(alone(dataBits / 2)),
                    expected.substr(static_cast<std::size_t>(dataBits / 2), 64));
        }
      }
    }
  }
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  ScanValues tdi;
  tdi.add(ScanValue::tdi);
  fill(head, 0, false, random);
  fill(data, 1, false, random);
  EXPECT_TRUE(trail.setPattern(kMost, tdi));
  EXPECT_EQ(scan.length(), RegisterScan::kTooLong);
  EXPECT_TRUE(trail.setPattern(0, {}) && head.setPattern(kMost, tdi));
  scan.frameChanged();
  EXPECT_EQ(scan.length(), RegisterScan::kTooLong);
}

}  // namespace
}  // namespace tapforge

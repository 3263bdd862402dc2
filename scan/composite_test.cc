#include "scan/composite.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "script/script_traits.h"

namespace tapforge {
namespace {

// A pattern with random bits for SMASK or without an SMASK, which stands for 1s,
// and the same bits as text, the last one first.
std::string randomPattern(CTapPattern& pattern, long length, bool given, std::mt19937& random) {
  static Reporter report(progmode_svf2tapbus::kMessageStyle);
  std::string bits;
  CTapField& field = pattern.storage(ScanValue::smask);
  if (length > 0) field.initTapField(length, report);
  for (long i = 0; i < (length + 3) / 4; ++i) {
    const unsigned digit = static_cast<unsigned>(random()) % 16;
    field.setTapDataChar(i, digit);
    for (int bit = 0; bit < 4; ++bit) bits += digit >> bit & 1 ? '1' : '0';
  }
  if (length > 0) field.setStart(0);
  ScanData data{length, {}};
  if (length > 0) data.given.add(ScanValue::tdi);
  if (length > 0 && given) data.given.add(ScanValue::smask);
  EXPECT_TRUE(pattern.setPattern(data));
  bits.resize(static_cast<std::size_t>(length));
  return given ? bits : std::string(bits.size(), '1');
}

TEST(CompositeScan, JoinsBitByBit) {
  std::mt19937 random(3);
  for (int round = 0; round < 4000; ++round) {
    const long most = round % 3 == 0 ? 20 : 150;
    const auto any = [&](long limit) { return static_cast<long>(random()) % limit; };
    RegisterPatterns patterns;
    std::string bits = randomPattern(patterns.head, any(most), any(3) != 0, random);
    bits += randomPattern(patterns.data, 1 + any(most), any(5) != 0, random);
    bits += randomPattern(patterns.trail, any(most), any(3) != 0, random);
    const auto length = static_cast<long>(bits.size());
    const CompositeScan scan(patterns, ScanValue::smask, length);
    for (long low = 0; low < length; low += 1 + any(9)) {
      const std::uint64_t word = scan.bits(low);
      for (long i = 0; i < 64; ++i) {
        const bool expected = low + i < length && bits[static_cast<std::size_t>(low + i)] == '1';
        ASSERT_EQ((word >> i & 1) != 0, expected) << "bit " << low + i << " of " << length;
      }
    }
  }
}

TEST(CTapField, TurnsItsRowInPlace) {
  Reporter report(progmode_svf2tapbus::kMessageStyle);
  for (const long digits : {1L, 2L, 5L, 16L, 33L}) {
    for (long start = 0; start < digits; ++start) {
      CTapField field;
      field.initTapField(4 * digits, report);
      for (long i = 0; i < digits; ++i) {
        field.setTapDataChar((start + i) % digits, static_cast<unsigned>(i * 7 % 16));
      }
      field.setStart(start);
      EXPECT_EQ(field.getTapDataChar(digits - 1), (digits - 1) * 7 % 16);
      field.normalise();
      for (long i = 0; i < digits; ++i) EXPECT_EQ(field.physicalDigit(i), i * 7 % 16);
    }
  }
}

}  // namespace
}  // namespace tapforge

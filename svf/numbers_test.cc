#include "svf/numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "io/text.h"
#include "tests/support/in_memory.h"

namespace tapforge::testing {
namespace {

// Numbers that are each followed by a token, up to one that is refused.
std::string numbers(std::string_view svf) {
  Source source(svf, progmode_svf2tapbus::kSyntaxRules);
  FileChannel& channel = source.channel;
  std::string text;
  try {
    while (channel.lexKeyword()) {
      channel.unlex();
      const Number number = getFloat(channel);
      if (number.kind == Number::Kind::integer) text += std::to_string(number.integer);
      if (number.kind == Number::Kind::real) text += shortExponent(number.real);
      if (number) channel.lex();
      text += concat("[", channel.tokenAsWritten(), "] ");
    }
  } catch (const ProgramEnd&) {
    text += source.saying();
  }
  return text;
}

TEST(Numbers, WithAndWithoutFractionAndExponent) {
  EXPECT_EQ(numbers("5 Hz +7; -0 ( 99999999999999999999 a"),
            "5[Hz] 7[;] 0[(] 9223372036854775807[a] ");
  EXPECT_EQ(numbers("1.5 a +1.5E3 b 12.25e-1 c 12.5e+ 2 d"),
            "1.50e+00[a] 1.50e+03[b] 1.23e+00[c] 1.25e+03[d] ");
  EXPECT_EQ(numbers("1.5e a 1.e3 b 1e3 c 2E- 1 d 1e99 e"),
            "1.50e+00[a] 1.00e+03[b] 1.00e+03[c] 2.00e-01[d] inf[e] ");
  // An exponent after a mantissa without "e", and a sign before one with the exponent inside.
  EXPECT_EQ(numbers("2.5 + 3 a -1e3 b -0.0 c e5 d"),
            "2.50e+00[a] 1.00e+03[b] -0.00e+00[c] 0.00e+00[d] ");
  EXPECT_EQ(numbers("Hz ; -x + y 1x 1f3 1e3e"), "[Hz] [;] [x] [y] [1x] [1f3] [1e3e] ");
  Source negative("- 5", progmode_svf2tapbus::kSyntaxRules);
  EXPECT_EQ(lGetLong(Sign::any, negative.channel), -5);
  EXPECT_EQ((Number{Number::Kind::integer, 1, 16777217}).asFloat(), 16777216.0F);
}

TEST(Numbers, Saturate) {
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
  EXPECT_TRUE(truncated(1.9F) == 1 && truncated(-1.9F) == -1 && truncated(std::nanf("")) == 0);
  EXPECT_TRUE(truncated(0x1p63F) == kMost && truncated(-0x1p64F) == kLeast);
  EXPECT_EQ(truncated(0x1.fffffep62F), kMost - 0x7fffffffff);
  EXPECT_TRUE(saturatedProduct(3, -4) == -12 && saturatedProduct(kMost, 2) == kMost);
  EXPECT_TRUE(saturatedProduct(kMost, -2) == kLeast && saturatedProduct(kLeast, 2) == kLeast);
  EXPECT_TRUE(saturatedProduct(kLeast, -1) == kMost && saturatedSum(kMost, -1) == kMost - 1);
  EXPECT_TRUE(saturatedSum(kMost, 1) == kMost && saturatedSum(kLeast, -1) == kLeast);
}

}  // namespace
}  // namespace tapforge::testing

#include "svf/numbers.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "shell/io/text.h"
#include "tests/support/fakes.h"

namespace tapforge::testing {
namespace {

// What `read` makes of a text and the token after it, or the refusal.
template <typename Read>
std::string after(std::string_view svf, const Read& read) {
  Source source(svf, scriptRules());
  try {
    const std::string number = read(source.channel);
    if (number != "none") source.channel.lex();
    return number + " " + std::string(source.channel.tokenAsWritten());
  } catch (const ProgramEnd&) {
    return source.report.text.substr(10, source.report.text.find('\n', 1) - 10);
  }
}

TEST(Numbers, GetFloat) {
  const auto read = [](FileChannel& channel) -> std::string {
    const Number number = getFloat(channel);
    if (!number) return "none";
    if (number.kind == Number::Kind::integer) return std::to_string(number.integer);
    return shortExponent(number.real) + " real";
  };
  const std::string syntax = "Incorrect real number syntax (use digits[.digits][e[+|-]digits])";
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"5 Hz", "5 Hz"},
      {"+7;", "7 ;"},
      {"-0 x", "0 x"},
      {"-1 x", "Positive number required"},
      {"99999999999999999999 x", "9223372036854775807 x"},
      {"1.5 x", "1.50e+00 real x"},
      {"+1.5E3 x", "1.50e+03 real x"},
      {"12.25e-1 x", "1.23e+00 real x"},
      {"12.5e+ 2 x", "1.25e+03 real x"},
      {"1.5e x", "1.50e+00 real x"},
      {"1.e3 x", "1.00e+03 real x"},
      {"1e3 x", "1.00e+03 real x"},
      {"2E- 1 x", "2.00e-01 real x"},
      {"1e99 x", "inf real x"},
      {"-0.0 x", "-0.00e+00 real x"},
      // An exponent of its own after a mantissa without "e", and a sign before one with it inside.
      {"2.5 + 3 x", "2.50e+00 real x"},
      {"-1e3 x", "1.00e+03 real x"},
      {"-2.5 x", "Expected a positive number"},
      {"-1e-2 x", "Expected a positive number"},
      {"e5 x", "0.00e+00 real x"},
      {"Hz", "none Hz"},
      {";", "none ;"},
      {"-x", "none x"},
      {"1x 2", "none 1x"},
      {"1f3 2", "none 1f3"},
      {"1e3e 2", "none 1e3e"},
      {".5 x", syntax},
      {"1.5f x", syntax},
      {"1. ; x", syntax},
      {"1.5;", "Exponent sign ?"},
      {"1.5e--3 x", "Expected positive number"},
      {"1.5e-x", "Number expected"},
  };
  for (const auto& [svf, expected] : cases) EXPECT_EQ(after(svf, read), expected) << svf;
  EXPECT_EQ((Number{Number::Kind::integer, 1, 16777217}).asFloat(), 16777216.0F);
  EXPECT_EQ((Number{Number::Kind::real, 1, 2}).asFloat(), 1.0F);
}

TEST(Numbers, GetLong) {
  const auto any = [](FileChannel& channel) {
    return std::to_string(lGetLong(Sign::any, channel));
  };
  const auto nonNegative = [](FileChannel& channel) {
    return std::to_string(lGetLong(Sign::nonNegative, channel));
  };
  EXPECT_EQ(after("5 x", nonNegative), "5 x");
  EXPECT_EQ(after("- 5;", any), "-5 ;");
  EXPECT_EQ(after("-5;", nonNegative), "Expected positive number");
  EXPECT_EQ(after("+5;", any), "Number expected");
  EXPECT_EQ(after("-x", any), "Number expected");
}

TEST(Numbers, TestIsNum) {
  for (const char* const text : {"5", "120", "1e", "1E5", "12e34"}) EXPECT_TRUE(testIsNum(text));
  for (const char* const text : {"", "x", "e5", "5x", "1.5", "-1", "1e+3", "1ee", "1e5x"}) {
    EXPECT_FALSE(testIsNum(text)) << text;
  }
}

TEST(Numbers, Saturate) {
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
  EXPECT_EQ(truncated(1.9F), 1);
  EXPECT_EQ(truncated(-1.9F), -1);
  EXPECT_EQ(truncated(std::numeric_limits<float>::quiet_NaN()), 0);
  EXPECT_EQ(truncated(0x1p63F), kMost);
  EXPECT_EQ(truncated(0x1.fffffep62F), kMost - 0x7fffffffff);
  EXPECT_EQ(truncated(-0x1p63F), kLeast);
  EXPECT_EQ(truncated(-0x1p64F), kLeast);
  EXPECT_EQ(saturatedProduct(3, -4), -12);
  EXPECT_EQ(saturatedProduct(kMost, 2), kMost);
  EXPECT_EQ(saturatedProduct(kMost, -2), kLeast);
  EXPECT_EQ(saturatedProduct(kLeast, 2), kLeast);
  EXPECT_EQ(saturatedProduct(kLeast, -1), kMost);
  EXPECT_EQ(saturatedSum(kMost, -1), kMost - 1);
  EXPECT_EQ(saturatedSum(kMost, 1), kMost);
  EXPECT_EQ(saturatedSum(kLeast, -1), kLeast);
}

}  // namespace
}  // namespace tapforge::testing

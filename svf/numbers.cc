#include "svf/numbers.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

#include "io/text.h"
#include "svf/char_class.h"

namespace tapforge {
namespace {

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

constexpr std::string_view kSyntax =
    "Incorrect real number syntax (use digits[.digits][e[+|-]digits])";

std::size_t leadingDigits(std::string_view text) {
  const auto* const end = std::find_if_not(
      text.begin(), text.end(), [](char c) { return isDigit(static_cast<unsigned char>(c)); });
  return static_cast<std::size_t>(end - text.begin());
}

// What a mantissa's or fraction's token turns out to be.
enum class Mantissa { plain, withExponent, noNumber };

Mantissa scanMantissa(std::string_view token) {
  token.remove_prefix(leadingDigits(token));
  if (token.empty()) return Mantissa::plain;
  const bool isExponent =
      toLower(token[0]) == 'e' && leadingDigits(token.substr(1)) == token.size() - 1;
  if (!isExponent) return Mantissa::noNumber;
  return token.size() == 1 ? Mantissa::plain : Mantissa::withExponent;
}

Number real(const std::string& text) {
  // The program never leaves the C locale, so the point is a point.
  return {Number::Kind::real, std::strtof(text.c_str(), nullptr), 0};
}

// The rest of a number that is no integer. The current token is the mantissa,
// or the fraction after `text`, the integer part and its point.
Number readReal(std::string text, bool negative, FileChannel& channel) {
  Reporter& report = channel.report();
  const bool hasInteger = !text.empty();
  if (channel.type() != TokenType::number && channel.type() != TokenType::word) {
    report.fatal(kSyntax);
  }
  const std::string token = channel.tokenLower();
  const Mantissa mantissa = scanMantissa(token);
  if (mantissa == Mantissa::noNumber) {
    if (hasInteger) report.fatal(kSyntax);
    return {};
  }
  text += token;
  // A sign in front is not applied to a number with its exponent inside.
  if (mantissa == Mantissa::withExponent) return real(text);

  channel.lex();
  if (channel.type() == TokenType::word) {
    channel.unlex();
  } else if (channel.is("+") || channel.is("-")) {
    text += channel.tokenAsWritten();
    text += std::to_string(lGetLong(Sign::nonNegative, channel));
  } else {
    report.fatal("Exponent sign ?");
  }
  if (negative) text.insert(0, 1, '-');
  const Number number = real(text);
  if (number.real < 0) report.fatal("Expected a positive number");
  return number;
}

}  // namespace

Number getFloat(FileChannel& channel) {
  if (channel.lexIs(";")) return {};
  const bool negative = channel.is("-");
  if (negative || channel.is("+")) channel.lex();
  if (channel.type() != TokenType::number) return readReal({}, negative, channel);

  const std::int64_t value = channel.number();
  char digits[FileChannel::kNumberLimit];
  const std::size_t size = channel.tokenAsWritten().copy(digits, sizeof digits);
  if (!channel.lexIs(".")) {
    channel.unlex();
    if (negative && value > 0) channel.report().fatal("Positive number required");
    return {Number::Kind::integer, 0, value};
  }
  channel.lex();
  return readReal(std::string(digits, size) + '.', negative, channel);
}

bool testIsNum(std::string_view text) {
  return leadingDigits(text) > 0 && scanMantissa(text) != Mantissa::noNumber;
}

std::int64_t lGetLong(Sign sign, FileChannel& channel) {
  const bool negative = channel.lexIs("-");
  if (negative) {
    channel.lex();
    if (sign == Sign::nonNegative) channel.report().fatal("Expected positive number");
  }
  if (channel.type() != TokenType::number) channel.report().fatal("Number expected");
  return negative ? -channel.number() : channel.number();
}

std::int64_t truncated(float value) {
  constexpr float kLimit = 0x1p63F;
  if (std::isnan(value)) return 0;
  if (value >= kLimit) return kMost;
  if (value < -kLimit) return kLeast;
  return static_cast<std::int64_t>(value);
}

std::int64_t saturatedProduct(std::int64_t a, std::int64_t b) {
  std::int64_t product = 0;
  if (!__builtin_mul_overflow(a, b, &product)) return product;
  return (a < 0) == (b < 0) ? kMost : kLeast;
}

std::int64_t saturatedSum(std::int64_t a, std::int64_t b) {
  std::int64_t sum = 0;
  if (!__builtin_add_overflow(a, b, &sum)) return sum;
  return a < 0 ? kLeast : kMost;
}

}  // namespace tapforge

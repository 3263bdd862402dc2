#include "svf/real_number.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>
#include <string_view>

#include "shell/io/text.h"
#include "svf/char_class.h"

namespace tapforge {
namespace {

constexpr std::string_view kSyntax =
    "Incorrect real number syntax (use digits[.digits][e[+|-]digits])";

bool allDigits(std::string_view text) {
  for (const char c : text) {
    if (!isDigit(static_cast<unsigned char>(c))) return false;
  }
  return true;
}

// What a mantissa's or fraction's token turns out to be.
enum class Mantissa { plain, withExponent, noNumber };

Mantissa scanMantissa(std::string_view token) {
  for (std::size_t i = 0; i < token.size(); ++i) {
    if (isDigit(static_cast<unsigned char>(token[i]))) continue;
    const std::string_view behind = token.substr(i + 1);
    if (token[i] != 'e' || !allDigits(behind)) return Mantissa::noNumber;
    return behind.empty() ? Mantissa::plain : Mantissa::withExponent;
  }
  return Mantissa::plain;
}

Number real(const std::string& text) {
  // The program never leaves the C locale, so the point is a point.
  return {Number::Kind::real, std::strtof(text.c_str(), nullptr), 0};
}

// The rest of a number that is no integer. The current token is the mantissa,
// or the fraction behind `integer` and its point.
Number readReal(std::string_view integer, bool negative, Lexer& lexer) {
  Reporter& report = lexer.report();
  std::string text(integer);
  const bool hasInteger = !text.empty();
  if (hasInteger) text += '.';
  if (lexer.type() != TokenType::number && lexer.type() != TokenType::word) report.fatal(kSyntax);
  const Mantissa mantissa = scanMantissa(lexer.token());
  if (mantissa == Mantissa::noNumber) {
    if (hasInteger) report.fatal(kSyntax);
    return {};
  }
  text += lexer.token();
  // A sign in front is not applied to a number with its exponent inside.
  if (mantissa == Mantissa::withExponent) return real(text);

  lexer.lex();
  if (lexer.type() == TokenType::word) {
    lexer.unlex();
  } else if (lexer.is("+") || lexer.is("-")) {
    text += lexer.token();
    text += std::to_string(lGetLong(Sign::nonNegative, lexer));
  } else {
    report.fatal("Exponent sign ?");
  }
  if (negative) text.insert(0, 1, '-');
  const Number number = real(text);
  if (number.real < 0) report.fatal("Expected a positive number");
  return number;
}

}  // namespace

Number getFloat(Lexer& lexer) {
  Reporter& report = lexer.report();
  if (lexer.lexIs(";")) return {};
  const bool negative = lexer.is("-");
  if (negative || lexer.is("+")) lexer.lex();
  if (lexer.type() != TokenType::number) return readReal({}, negative, lexer);

  const long value = decimalValue(lexer.token());
  char digits[Lexer::kNumberLimit];
  const std::size_t size = lexer.token().copy(digits, sizeof digits);
  if (!lexer.lexIs(".")) {
    lexer.unlex();
    if (negative && value > 0) report.fatal("Positive number required");
    return {Number::Kind::integer, 0, value};
  }
  lexer.lex();
  return readReal({digits, size}, negative, lexer);
}

long truncated(float value) {
  constexpr float kLimit = 0x1p63F;
  if (std::isnan(value)) return 0;
  if (value >= kLimit) return std::numeric_limits<long>::max();
  if (value < -kLimit) return std::numeric_limits<long>::min();
  return static_cast<long>(value);
}

long saturatedProduct(long a, long b) {
  long product = 0;
  if (!__builtin_mul_overflow(a, b, &product)) return product;
  return (a < 0) == (b < 0) ? std::numeric_limits<long>::max() : std::numeric_limits<long>::min();
}

long saturatedSum(long a, long b) {
  long sum = 0;
  if (!__builtin_add_overflow(a, b, &sum)) return sum;
  return a < 0 ? std::numeric_limits<long>::min() : std::numeric_limits<long>::max();
}

}  // namespace tapforge

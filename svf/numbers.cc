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

// Whether a text is digits[.digits][e[+|-]digits].
bool isExactNumber(std::string_view text) {
  const auto takeDigits = [&text] {
    const std::size_t count = leadingDigits(text);
    text.remove_prefix(count);
    return count > 0;
  };
  const auto take = [&text](char c) {
    const bool found = !text.empty() && toLower(text[0]) == c;
    if (found) text.remove_prefix(1);
    return found;
  };
  if (!takeDigits() || (take('.') && !takeDigits())) return false;
  if (take('e')) {
    if (!take('+')) take('-');
    if (!takeDigits()) return false;
  }
  return text.empty();
}

// The tokens that touch each other are one number. A token that cannot begin one, as a
// word or ";", stays the current one.
Number getExact(FileChannel& channel) {
  const bool begins = channel.type() == TokenType::number ||
                      isDigit(static_cast<unsigned char>(channel.tokenAsWritten()[0]));
  if (!begins && channel.type() == TokenType::word) return {};
  std::string& text = channel.numberText();
  text.clear();
  std::int64_t end = 0;
  do {
    text += channel.tokenAsWritten();
    end = channel.tokenEnd();
    channel.lex();
  } while (channel.tokenBegin() == end && (channel.type() <= TokenType::number || channel.is(".") ||
                                           channel.is("+") || channel.is("-")));
  channel.unlex();
  if (!isExactNumber(text)) {
    channel.report().fatal(
        concat("-exact: [", text, "] is no digits[.digits][E[+|-]digits] in one piece"));
  }
  const double value = std::strtod(text.c_str(), nullptr);
  const std::size_t first = text.find_first_not_of("0.");
  const bool isZero = first == text.npos || toLower(text[first]) == 'e';
  if (value > 0x1p53 || (value < std::numeric_limits<double>::min() && !isZero)) {
    channel.report().fatal(concat("-exact: [", text, "] is too large or too small"));
  }
  return real(text);
}

}  // namespace

Number getFloat(FileChannel& channel) {
  if (channel.lexIs(";")) return {};
  if (channel.rules().exact) return getExact(channel);
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
  if (channel.rules().exact) {
    // A number can have characters in it that are neither digits nor end it.
    const std::string_view text = channel.tokenAsWritten();
    if (leadingDigits(text) != text.size()) channel.report().fatal("Number expected");
    if (negative) channel.report().fatal("Expected positive number");
  }
  return negative ? -channel.number() : channel.number();
}

std::optional<WholeAndFraction> exactProduct(std::string_view number, std::int64_t factor) {
  // The digits, and how many of them stand before the point.
  std::string digits(number.substr(0, leadingDigits(number)));
  auto point = std::ssize(digits);
  number.remove_prefix(digits.size());
  if (number.starts_with('.')) {
    const std::size_t count = leadingDigits(number.substr(1));
    digits += number.substr(1, count);
    number.remove_prefix(1 + count);
  }
  if (!number.empty()) {
    // A larger exponent than this makes nothing of any number.
    constexpr long kMostExponent = 1000;
    const std::string exponent(number.substr(1));
    point += std::clamp(std::strtol(exponent.c_str(), nullptr, 10), -kMostExponent, kMostExponent);
  }

  std::uint64_t carry = 0;
  for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit) {
    carry += static_cast<std::uint64_t>(*digit - '0') * static_cast<std::uint64_t>(factor);
    *digit = static_cast<char>('0' + carry % 10);
    carry /= 10;
  }
  const std::string above = carry > 0 ? std::to_string(carry) : "";
  digits.insert(0, above);
  point += std::ssize(above);

  WholeAndFraction product{0, false};
  for (std::ptrdiff_t i = 0; i < std::max(point, std::ssize(digits)); ++i) {
    const int digit = i < std::ssize(digits) ? digits[static_cast<std::size_t>(i)] - '0' : 0;
    if (i >= point) {
      product.hasFraction = product.hasFraction || digit != 0;
    } else if (__builtin_mul_overflow(product.whole, 10, &product.whole) ||
               __builtin_add_overflow(product.whole, digit, &product.whole)) {
      return std::nullopt;
    }
  }
  return product;
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

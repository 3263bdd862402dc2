#include "io/text.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace tapforge {

std::string paddedDecimal(std::int64_t value, std::size_t width, char filler) {
  const std::string text = std::to_string(value);
  return std::string(std::max(width, text.size()) - text.size(), filler) + text;
}

std::string shortExponent(double value) {
  std::array<char, 32> digits{};
  const auto [end, error] =
      std::to_chars(digits.begin(), digits.end(), value, std::chars_format::scientific, 2);
  return {digits.begin(), end};
}

char toLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

char toUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

std::string xToUpper(std::string_view text) {
  std::string upper(text);
  std::transform(upper.begin(), upper.end(), upper.begin(), toUpper);
  return upper;
}

}  // namespace tapforge

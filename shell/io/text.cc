#include "shell/io/text.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace tapforge {
namespace {

std::string padded(std::string text, int width, char filler) {
  const auto wanted = static_cast<std::size_t>(std::max(width, 0));
  if (text.size() < wanted) text.insert(0, wanted - text.size(), filler);
  return text;
}

}  // namespace

std::string paddedDecimal(std::int64_t value, int width) {
  return padded(std::to_string(value), width, ' ');
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

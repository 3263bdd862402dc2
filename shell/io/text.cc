#include "shell/io/text.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace tapforge {

std::string paddedDecimal(long value, int width) {
  std::string text = std::to_string(value);
  const auto wanted = static_cast<std::size_t>(std::max(width, 0));
  if (text.size() < wanted) text.insert(0, wanted - text.size(), ' ');
  return text;
}

std::string paddedHex(std::uint32_t value, int width, bool upperCase) {
  std::array<char, 8> digits{};
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value, 16);
  std::string text(digits.data(), end);
  if (upperCase) text = toUpper(text);
  const auto wanted = static_cast<std::size_t>(std::max(width, 0));
  if (text.size() < wanted) text.insert(0, wanted - text.size(), '0');
  return text;
}

std::string shortExponent(double value) {
  std::array<char, 32> digits{};
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                          std::chars_format::scientific, 2);
  return {digits.data(), end};
}

char toLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

char toUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

std::string toUpper(std::string_view text) {
  std::string upper(text);
  std::transform(upper.begin(), upper.end(), upper.begin(), [](char c) { return toUpper(c); });
  return upper;
}

}  // namespace tapforge

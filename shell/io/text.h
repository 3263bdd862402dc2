#ifndef TAPFORGE_SHELL_IO_TEXT_H
#define TAPFORGE_SHELL_IO_TEXT_H

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace tapforge {

/// Joins texts and integers (decimal) into one string. Messages are built with
/// it, so no text from a file or a command line is ever used as a format.
template <typename... Pieces>
std::string concat(const Pieces&... pieces) {
  std::string text;
  auto append = [&text](const auto& piece) {
    if constexpr (std::is_same_v<std::decay_t<decltype(piece)>, char>) {
      text += piece;
    } else if constexpr (std::is_integral_v<std::decay_t<decltype(piece)>>) {
      text += std::to_string(piece);
    } else {
      text += std::string_view(piece);
    }
  };
  (append(pieces), ...);
  return text;
}

/// "%*ld": decimal, blanks in front up to `width` characters.
std::string paddedDecimal(long value, int width);

/// "%0*X" or "%0*x" of the low 32 bits.
std::string paddedHex(std::uint32_t value, int width, bool upperCase);

/// "%.2e": the form of every time that is written, whatever the locale.
std::string shortExponent(double value);

/// Changes ASCII letters only, as the C locale does.
char toLower(char c);
char toUpper(char c);
std::string toUpper(std::string_view text);

}  // namespace tapforge

#endif  // TAPFORGE_SHELL_IO_TEXT_H

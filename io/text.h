#ifndef TAPFORGE_IO_TEXT_H
#define TAPFORGE_IO_TEXT_H

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace tapforge {

/// Joins texts, characters and integers (in decimal) into one string. Messages
/// are built with it, so no text from a file or a command line is ever used as
/// a format.
template <typename... Pieces>
std::string concat(const Pieces&... pieces) {
  std::string text;
  auto append = [&text](const auto& piece) {
    using Piece = std::decay_t<decltype(piece)>;
    if constexpr (std::is_same_v<Piece, char>) {
      text += piece;
    } else if constexpr (std::is_integral_v<Piece>) {
      text += std::to_string(piece);
    } else {
      text += std::string_view(piece);
    }
  };
  (append(pieces), ...);
  return text;
}

/// Decimal, with `filler` in front up to `width` characters.
std::string paddedDecimal(std::int64_t value, std::size_t width, char filler = ' ');

/// One digit, point, two digits, exponent of at least two digits: the form in
/// which times are written ("1.50e-03"), whatever the locale is.
std::string shortExponent(double value);

/// Change ASCII letters only, as the C locale does.
char toLower(char c);
char toUpper(char c);
std::string xToUpper(std::string_view text);

}  // namespace tapforge

#endif  // TAPFORGE_IO_TEXT_H

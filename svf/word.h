#ifndef TAPFORGE_SVF_WORD_H
#define TAPFORGE_SVF_WORD_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tapforge {

/// A word that a token is compared with: in lower case, known when compiling.
struct Word {
  // NOLINTNEXTLINE(google-explicit-constructor): "is("tdi")" is the point of it.
  consteval Word(const char* literal) : text(literal), key(keyOf(text)) {}

  /// The first eight characters of a text, the first one lowest.
  static constexpr std::uint64_t keyOf(std::string_view text) {
    std::uint64_t key = 0;
    for (std::size_t i = 0; i < text.size() && i < 8; ++i) {
      key |= static_cast<std::uint64_t>(static_cast<unsigned char>(text[i])) << (8 * i);
    }
    return key;
  }

  std::string_view text;
  std::uint64_t key;
};

/// Whether each of the first `count` rows of a table belongs to the enumerator with
/// its number; `named` is the member that holds the enumerator.
template <typename Row, std::size_t N, typename Enum>
consteval bool rowsByNumber(const std::array<Row, N>& rows, Enum Row::*named,
                            std::size_t count = N) {
  for (std::size_t i = 0; i < count; ++i) {
    if (rows[i].*named != static_cast<Enum>(i)) return false;
  }
  return true;
}

}  // namespace tapforge

#endif  // TAPFORGE_SVF_WORD_H

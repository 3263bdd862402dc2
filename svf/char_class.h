#ifndef TAPFORGE_SVF_CHAR_CLASS_H
#define TAPFORGE_SVF_CHAR_CLASS_H

#include <array>
#include <cstdint>

namespace tapforge {

/// Character classes of the C locale, as bits of one table entry per byte.
/// Bytes of 128 and above belong to none.
namespace char_class {

inline constexpr std::uint8_t kSpace = 1;
inline constexpr std::uint8_t kDigit = 2;
inline constexpr std::uint8_t kLetter = 4;  // letters and "_"
inline constexpr std::uint8_t kPunct = 8;   // with "_"
inline constexpr std::uint8_t kWord = kDigit | kLetter;

constexpr std::array<std::uint8_t, 256> makeTable() {
  std::array<std::uint8_t, 256> table{};
  for (int c = '\t'; c <= '\r'; ++c) table[static_cast<std::size_t>(c)] = kSpace;
  table[' '] = kSpace;
  for (int c = '!'; c <= '~'; ++c) {
    std::uint8_t& entry = table[static_cast<std::size_t>(c)];
    if (c >= '0' && c <= '9') {
      entry = kDigit;
    } else if ((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z')) {
      entry = kLetter;
    } else {
      entry = kPunct;
    }
  }
  table['_'] |= kLetter;
  return table;
}

inline constexpr std::array<std::uint8_t, 256> kTable = makeTable();

}  // namespace char_class

inline bool isIn(unsigned char c, std::uint8_t classes) {
  return (char_class::kTable[c] & classes) != 0;
}
inline bool isSpace(unsigned char c) { return isIn(c, char_class::kSpace); }
inline bool isDigit(unsigned char c) { return isIn(c, char_class::kDigit); }
inline bool isWordChar(unsigned char c) { return isIn(c, char_class::kWord); }
inline bool isWordStart(unsigned char c) { return isIn(c, char_class::kLetter); }
inline bool isPunct(unsigned char c) { return isIn(c, char_class::kPunct); }

}  // namespace tapforge

#endif  // TAPFORGE_SVF_CHAR_CLASS_H

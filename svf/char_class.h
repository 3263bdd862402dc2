#ifndef TAPFORGE_SVF_CHAR_CLASS_H
#define TAPFORGE_SVF_CHAR_CLASS_H

#include <array>
#include <cstddef>
#include <cstdint>

namespace tapforge {

/// What a character of SVF text is, in the C locale. Each character is in
/// exactly one class; bytes of 128 and above are `other`. What words are made of
/// comes last, so that one comparison tells it.
enum class CharClass : std::uint8_t { other, space, punctuation, digit, wordStart };

namespace char_class {

constexpr std::array<CharClass, 256> makeTable() {
  std::array<CharClass, 256> table{};
  for (std::size_t c = '\t'; c <= '\r'; ++c) table[c] = CharClass::space;
  table[' '] = CharClass::space;
  for (std::size_t c = '!'; c <= '~'; ++c) table[c] = CharClass::punctuation;
  for (std::size_t c = '0'; c <= '9'; ++c) table[c] = CharClass::digit;
  for (std::size_t c = 'a'; c <= 'z'; ++c) table[c] = table[c - 'a' + 'A'] = CharClass::wordStart;
  table['_'] = CharClass::wordStart;
  return table;
}

inline constexpr std::array<CharClass, 256> kTable = makeTable();

}  // namespace char_class

inline CharClass classOf(unsigned char c) { return char_class::kTable[c]; }
inline bool isSpace(unsigned char c) { return classOf(c) == CharClass::space; }
inline bool isDigit(unsigned char c) { return classOf(c) == CharClass::digit; }
inline bool isWordChar(unsigned char c) { return classOf(c) >= CharClass::digit; }

}  // namespace tapforge

#endif  // TAPFORGE_SVF_CHAR_CLASS_H

#ifndef TAPFORGE_SVF_TEXT_SCAN_H
#define TAPFORGE_SVF_TEXT_SCAN_H

#include <cstdint>

#include "svf/char_class.h"
#include "svf/simd.h"

namespace tapforge {

/// Loops over many characters of the source. Each has a version in namespace
/// `scalar` with the same results.

/// How many word characters (letters, digits, "_") the text begins with, at
/// most 16. All 16 characters must be readable.
unsigned wordPrefix(const unsigned char* text);

/// Which characters end a line: only a line feed, or a carriage return as well.
enum class LineEnds { lineFeed, lineFeedOrReturn };

/// The number of line ends in [begin, end).
std::int64_t countLineEnds(const unsigned char* begin, const unsigned char* end, LineEnds which);

namespace scalar {
inline unsigned wordPrefix(const unsigned char* text) {
  unsigned size = 0;
  while (size < 16 && isWordChar(text[size])) ++size;
  return size;
}
std::int64_t countLineEnds(const unsigned char* begin, const unsigned char* end, LineEnds which);
}  // namespace scalar

#if defined(TAPFORGE_SSE2)

inline unsigned wordPrefix(const unsigned char* text) {
  // A range test by one signed comparison: the range is moved to the low end.
  const auto inRange = [](__m128i chars, char first, int count) {
    return _mm_cmplt_epi8(_mm_add_epi8(chars, _mm_set1_epi8(static_cast<char>(-128 - first))),
                          _mm_set1_epi8(static_cast<char>(-128 + count)));
  };
  const __m128i chars = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
  const __m128i isLetter = inRange(_mm_or_si128(chars, _mm_set1_epi8(0x20)), 'a', 26);
  const __m128i isNumeral = inRange(chars, '0', 10);
  const __m128i isUnderscore = _mm_cmpeq_epi8(chars, _mm_set1_epi8('_'));
  const __m128i isWord = _mm_or_si128(_mm_or_si128(isLetter, isNumeral), isUnderscore);
  return static_cast<unsigned>(__builtin_ctz(~static_cast<unsigned>(_mm_movemask_epi8(isWord))));
}

#elif defined(TAPFORGE_NEON)

inline unsigned wordPrefix(const unsigned char* text) {
  const uint8x16_t chars = vld1q_u8(text);
  const auto inRange = [](uint8x16_t c, unsigned char first, unsigned char count) {
    return vcltq_u8(vsubq_u8(c, vdupq_n_u8(first)), vdupq_n_u8(count));
  };
  const uint8x16_t isLetter = inRange(vorrq_u8(chars, vdupq_n_u8(0x20)), 'a', 26);
  const uint8x16_t isNumeral = inRange(chars, '0', 10);
  const uint8x16_t isUnderscore = vceqq_u8(chars, vdupq_n_u8('_'));
  return neon::leading(vorrq_u8(vorrq_u8(isLetter, isNumeral), isUnderscore));
}

#else

inline unsigned wordPrefix(const unsigned char* text) { return scalar::wordPrefix(text); }

#endif

}  // namespace tapforge

#endif  // TAPFORGE_SVF_TEXT_SCAN_H

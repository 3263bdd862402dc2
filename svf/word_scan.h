#ifndef TAPFORGE_SVF_WORD_SCAN_H
#define TAPFORGE_SVF_WORD_SCAN_H

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "svf/char_class.h"

namespace tapforge {

/// The word characters (letters, digits, "_") at the start of a text.
struct WordRun {
  unsigned size;    // how many, at most 16
  unsigned digits;  // how many digits stand in front of the first other one
};

/// Looks at 16 characters, all of which must be readable, and writes them in
/// lower case; what it writes behind the run means nothing.
WordRun scanWord(const unsigned char* text, char* lower);

namespace plain {
/// The twin for machines without SSE2, and for tests to compare with.
inline WordRun scanWord(const unsigned char* text, char* lower) {
  WordRun run{0, 0};
  while (run.size < 16 && isWordChar(text[run.size])) {
    const unsigned char c = text[run.size];
    if (isDigit(c) && run.digits == run.size) ++run.digits;
    const bool capital = c >= 'A' && c <= 'Z';
    lower[run.size++] = static_cast<char>(capital ? c - 'A' + 'a' : c);
  }
  return run;
}
}  // namespace plain

#if defined(__SSE2__)

inline WordRun scanWord(const unsigned char* text, char* lower) {
  // A range test by one signed comparison: the range is moved to the low end.
  const auto inRange = [](__m128i chars, char first, int count) {
    return _mm_cmplt_epi8(_mm_add_epi8(chars, _mm_set1_epi8(static_cast<char>(-128 - first))),
                          _mm_set1_epi8(static_cast<char>(-128 + count)));
  };
  const __m128i chars = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
  const __m128i bit5 = _mm_set1_epi8(0x20);
  const __m128i isLetter = inRange(_mm_or_si128(chars, bit5), 'a', 26);
  const __m128i isNumeral = inRange(chars, '0', 10);
  const __m128i isLine = _mm_cmpeq_epi8(chars, _mm_set1_epi8('_'));
  const __m128i isWord = _mm_or_si128(_mm_or_si128(isLetter, isNumeral), isLine);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(lower),
                   _mm_or_si128(chars, _mm_and_si128(isLetter, bit5)));
  const auto leading = [](__m128i matches) {
    return static_cast<unsigned>(__builtin_ctz(~static_cast<unsigned>(_mm_movemask_epi8(matches))));
  };
  return {leading(isWord), leading(isNumeral)};
}

#else

inline WordRun scanWord(const unsigned char* text, char* lower) {
  return plain::scanWord(text, lower);
}

#endif

}  // namespace tapforge

#endif  // TAPFORGE_SVF_WORD_SCAN_H

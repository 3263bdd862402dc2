#include "svf/line_end.h"

#include <algorithm>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tapforge {

const unsigned char* findLineEndPlain(const unsigned char* begin, const unsigned char* limit) {
  return std::find_if(begin, limit, [](unsigned char c) { return c == '\n' || c == '\r'; });
}

long countLineFeedsPlain(const unsigned char* begin, const unsigned char* end) {
  return std::count(begin, end, static_cast<unsigned char>('\n'));
}

#if defined(__SSE2__)

long countLineFeeds(const unsigned char* begin, const unsigned char* end) {
  const __m128i lineFeed = _mm_set1_epi8('\n');
  const __m128i zero = _mm_setzero_si128();
  __m128i total = zero;
  for (; end - begin >= 16; begin += 16) {
    const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(begin));
    // Each match is -1; the sums of both halves are added up.
    const __m128i matches = _mm_sub_epi8(zero, _mm_cmpeq_epi8(text, lineFeed));
    total = _mm_add_epi64(total, _mm_sad_epu8(matches, zero));
  }
  long halves[2];
  _mm_storeu_si128(reinterpret_cast<__m128i*>(halves), total);
  return halves[0] + halves[1] + countLineFeedsPlain(begin, end);
}

const unsigned char* findLineEnd(const unsigned char* begin, const unsigned char* limit) {
  const __m128i lineFeed = _mm_set1_epi8('\n');
  const __m128i carriageReturn = _mm_set1_epi8('\r');
  for (; begin < limit; begin += 16) {
    const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(begin));
    const int found = _mm_movemask_epi8(
        _mm_or_si128(_mm_cmpeq_epi8(text, lineFeed), _mm_cmpeq_epi8(text, carriageReturn)));
    if (found != 0) return std::min(begin + __builtin_ctz(static_cast<unsigned>(found)), limit);
  }
  return limit;
}

#else

long countLineFeeds(const unsigned char* begin, const unsigned char* end) {
  return countLineFeedsPlain(begin, end);
}

const unsigned char* findLineEnd(const unsigned char* begin, const unsigned char* limit) {
  return findLineEndPlain(begin, limit);
}

#endif

}  // namespace tapforge

#include "svf/line_end.h"

#include <algorithm>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tapforge {

const unsigned char* findLineEndPlain(const unsigned char* begin, const unsigned char* limit) {
  return std::find_if(begin, limit, [](unsigned char c) { return c == '\n' || c == '\r'; });
}

#if defined(__SSE2__)

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

const unsigned char* findLineEnd(const unsigned char* begin, const unsigned char* limit) {
  return findLineEndPlain(begin, limit);
}

#endif

}  // namespace tapforge

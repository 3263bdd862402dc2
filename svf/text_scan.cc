#include "svf/text_scan.h"

#include <algorithm>

namespace tapforge {
namespace scalar {

std::int64_t countLineEnds(const unsigned char* begin, const unsigned char* end, LineEnds which) {
  const std::int64_t lineFeeds = std::count(begin, end, '\n');
  return which == LineEnds::lineFeed ? lineFeeds : lineFeeds + std::count(begin, end, '\r');
}

}  // namespace scalar

#if defined(TAPFORGE_SSE2)

std::int64_t countLineEnds(const unsigned char* begin, const unsigned char* end, LineEnds which) {
  const __m128i lineFeed = _mm_set1_epi8('\n');
  const __m128i other = _mm_set1_epi8(which == LineEnds::lineFeed ? '\n' : '\r');
  const __m128i zero = _mm_setzero_si128();
  __m128i total = zero;  // two 64-bit sums
  while (end - begin >= 16) {
    // Each match is -1 in its byte, so at most 255 rounds fit into the bytes.
    const std::ptrdiff_t rounds = std::min<std::ptrdiff_t>((end - begin) / 16, 255);
    __m128i matches = zero;
    for (const unsigned char* const stop = begin + 16 * rounds; begin != stop; begin += 16) {
      const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(begin));
      const __m128i found =
          _mm_or_si128(_mm_cmpeq_epi8(text, lineFeed), _mm_cmpeq_epi8(text, other));
      matches = _mm_sub_epi8(matches, found);
    }
    total = _mm_add_epi64(total, _mm_sad_epu8(matches, zero));
  }
  std::int64_t halves[2];
  _mm_storeu_si128(reinterpret_cast<__m128i*>(halves), total);
  return halves[0] + halves[1] + scalar::countLineEnds(begin, end, which);
}

#elif defined(TAPFORGE_NEON)

std::int64_t countLineEnds(const unsigned char* begin, const unsigned char* end, LineEnds which) {
  const uint8x16_t lineFeed = vdupq_n_u8('\n');
  const uint8x16_t other = vdupq_n_u8(which == LineEnds::lineFeed ? '\n' : '\r');
  std::int64_t total = 0;
  while (end - begin >= 16) {
    // Each match is -1 in its byte, so at most 255 rounds fit into the bytes.
    const std::ptrdiff_t rounds = std::min<std::ptrdiff_t>((end - begin) / 16, 255);
    uint8x16_t matches = vdupq_n_u8(0);
    for (const unsigned char* const stop = begin + 16 * rounds; begin != stop; begin += 16) {
      const uint8x16_t text = vld1q_u8(begin);
      matches = vsubq_u8(matches, vorrq_u8(vceqq_u8(text, lineFeed), vceqq_u8(text, other)));
    }
    total += vaddlvq_u8(matches);
  }
  return total + scalar::countLineEnds(begin, end, which);
}

#else

std::int64_t countLineEnds(const unsigned char* begin, const unsigned char* end, LineEnds which) {
  return scalar::countLineEnds(begin, end, which);
}

#endif

}  // namespace tapforge

#ifndef TAPFORGE_SCAN_HEX_DIGITS_H
#define TAPFORGE_SCAN_HEX_DIGITS_H

#include <cstddef>
#include <cstdint>

#include "scan/bits.h"

// Which processors take sixteen digits at a time by vector instructions. All others,
// and a build with TAPFORGE_SIMD=OFF, use the functions in namespace `scalar`.
#if !defined(TAPFORGE_NO_SIMD)
#if defined(__SSE2__) && defined(__x86_64__)
#define TAPFORGE_SSE2 1
#include <emmintrin.h>
#elif defined(__aarch64__) && defined(__ARM_NEON) && !defined(__AARCH64EB__)
#define TAPFORGE_NEON 1
#include <arm_neon.h>
#endif
#endif

namespace tapforge {

/// The loops that every digit of a scan passes through: hex text in, hex text
/// out, sixteen digits at a time. The two that some processors have a faster way for
/// have a version in namespace `scalar` with the same results.

/// The digits that a text begins with, and their value as a number.
struct ShortHex {
  unsigned digits;  // at most 16
  std::uint64_t value;
};

/// Looks at the sixteen characters of `text`, all of which must be readable.
ShortHex decodeShortHex(const unsigned char* text);

/// Writes the sixteen digits of `bits`, the most significant one first.
void encodeHex16(std::uint64_t bits, HexCase hexCase, char* out);

/// The value of a hex digit, or -1.
int hexValue(unsigned char c);

/// Decodes the hex digits at the start of `text`, at most `count` (up to `top` + 1),
/// into the nibbles of `packed`: the first digit goes to nibble `top`, each further
/// one to the nibble below (nibble i is in byte i / 2, the low half when i is even),
/// all of them 0 before. Stops at the first other character and returns the number of
/// digits decoded. 16 bytes after the text must be readable, and 8 bytes after the
/// nibbles are read and written back as they were.
std::size_t decodeHex(const unsigned char* text, std::size_t count, unsigned char* packed,
                      std::int64_t top);

namespace scalar {
ShortHex decodeShortHex(const unsigned char* text);
void encodeHex16(std::uint64_t bits, HexCase hexCase, char* out);
}  // namespace scalar

#if defined(TAPFORGE_SSE2)

namespace sse2 {

// The values of sixteen hex digits; `good` gets a bit for each that is one.
inline __m128i digitValues(__m128i text, unsigned& good) {
  // "0" to "9" minus "0" is 0 to 9. A letter in lower case minus "a" is 0 to 5.
  // The comparison is signed, so both are moved to the low end of the range.
  const __m128i low = _mm_set1_epi8(-128);
  const __m128i fromZero = _mm_sub_epi8(text, _mm_set1_epi8('0'));
  const __m128i isDigit = _mm_cmplt_epi8(_mm_add_epi8(fromZero, low), _mm_set1_epi8(-128 + 10));
  const __m128i fromA = _mm_sub_epi8(_mm_or_si128(text, _mm_set1_epi8(0x20)), _mm_set1_epi8('a'));
  const __m128i isLetter = _mm_cmplt_epi8(_mm_add_epi8(fromA, low), _mm_set1_epi8(-128 + 6));
  good = static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(isDigit, isLetter)));
  return _mm_or_si128(_mm_and_si128(isDigit, fromZero),
                      _mm_and_si128(isLetter, _mm_add_epi8(fromA, _mm_set1_epi8(10))));
}

// Sixteen digit values, the first most significant, as one number.
inline std::uint64_t packDigits(__m128i values) {
  // Each pair becomes a 16-bit lane with the first digit in its low byte.
  const __m128i pairs = _mm_or_si128(_mm_slli_epi16(values, 4), _mm_srli_epi16(values, 8));
  const __m128i bytes = _mm_packus_epi16(_mm_and_si128(pairs, _mm_set1_epi16(0xff)), pairs);
  return __builtin_bswap64(static_cast<std::uint64_t>(_mm_cvtsi128_si64(bytes)));
}

}  // namespace sse2

inline ShortHex decodeShortHex(const unsigned char* text) {
  unsigned good = 0;
  const __m128i values =
      sse2::digitValues(_mm_loadu_si128(reinterpret_cast<const __m128i*>(text)), good);
  const auto digits = static_cast<unsigned>(__builtin_ctz(~good));
  if (digits == 0) return {0, 0};
  return {digits, sse2::packDigits(values) >> (64 - 4 * digits)};
}

inline void encodeHex16(std::uint64_t bits, HexCase hexCase, char* out) {
  const __m128i bytes = _mm_cvtsi64_si128(static_cast<long long>(__builtin_bswap64(bits)));
  const __m128i nibble = _mm_set1_epi8(15);
  const __m128i values = _mm_unpacklo_epi8(_mm_and_si128(_mm_srli_epi16(bytes, 4), nibble),
                                           _mm_and_si128(bytes, nibble));
  const __m128i isLetter = _mm_cmpgt_epi8(values, _mm_set1_epi8(9));
  const char toLetter = hexCase == HexCase::lower ? 'a' - '0' - 10 : 'A' - '0' - 10;
  const __m128i text = _mm_add_epi8(_mm_add_epi8(values, _mm_set1_epi8('0')),
                                    _mm_and_si128(isLetter, _mm_set1_epi8(toLetter)));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), text);
}

#elif defined(TAPFORGE_NEON)

inline ShortHex decodeShortHex(const unsigned char* text) {
  const uint8x16_t chars = vld1q_u8(text);
  const uint8x16_t fromZero = vsubq_u8(chars, vdupq_n_u8('0'));
  const uint8x16_t isDigit = vcltq_u8(fromZero, vdupq_n_u8(10));
  const uint8x16_t fromA = vsubq_u8(vorrq_u8(chars, vdupq_n_u8(0x20)), vdupq_n_u8('a'));
  const uint8x16_t isLetter = vcltq_u8(fromA, vdupq_n_u8(6));
  // Four bits for each character, the first one lowest.
  const uint16x8_t isGood = vreinterpretq_u16_u8(vorrq_u8(isDigit, isLetter));
  const std::uint64_t others = ~vget_lane_u64(vreinterpret_u64_u8(vshrn_n_u16(isGood, 4)), 0);
  const auto digits = others == 0 ? 16U : static_cast<unsigned>(__builtin_ctzll(others)) / 4;
  if (digits == 0) return {0, 0};
  const uint8x16_t letters = vandq_u8(isLetter, vaddq_u8(fromA, vdupq_n_u8(10)));
  const uint8x16_t values = vbslq_u8(isDigit, fromZero, letters);
  // Each pair becomes a byte with the first digit in its high half.
  const uint16x8_t pairs = vreinterpretq_u16_u8(values);
  const uint8x8_t bytes = vmovn_u16(vorrq_u16(vshlq_n_u16(pairs, 4), vshrq_n_u16(pairs, 8)));
  const std::uint64_t value = __builtin_bswap64(vget_lane_u64(vreinterpret_u64_u8(bytes), 0));
  return {digits, value >> (64 - 4 * digits)};
}

inline void encodeHex16(std::uint64_t bits, HexCase hexCase, char* out) {
  const char* const digits = hexCase == HexCase::lower ? "0123456789abcdef" : "0123456789ABCDEF";
  const uint8x8_t bytes = vcreate_u8(__builtin_bswap64(bits));
  const uint8x8x2_t halves = vzip_u8(vshr_n_u8(bytes, 4), vand_u8(bytes, vdup_n_u8(15)));
  const uint8x16_t table = vld1q_u8(reinterpret_cast<const unsigned char*>(digits));
  vst1q_u8(reinterpret_cast<unsigned char*>(out),
           vqtbl1q_u8(table, vcombine_u8(halves.val[0], halves.val[1])));
}

#else

inline ShortHex decodeShortHex(const unsigned char* text) { return scalar::decodeShortHex(text); }
inline void encodeHex16(std::uint64_t bits, HexCase hexCase, char* out) {
  scalar::encodeHex16(bits, hexCase, out);
}

#endif

}  // namespace tapforge

#endif  // TAPFORGE_SCAN_HEX_DIGITS_H

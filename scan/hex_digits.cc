#include "scan/hex_digits.h"

#include <algorithm>
#include <array>
#include <cstring>

#if defined(__SSE2__) && defined(__x86_64__)
#include <emmintrin.h>
#endif

namespace tapforge {
namespace {

constexpr std::array<std::int8_t, 256> makeValues() {
  std::array<std::int8_t, 256> values{};
  values.fill(-1);
  for (std::size_t i = 0; i < 10; ++i) values['0' + i] = static_cast<std::int8_t>(i);
  for (std::size_t i = 0; i < 6; ++i) {
    values['a' + i] = values['A' + i] = static_cast<std::int8_t>(10 + i);
  }
  return values;
}

constexpr std::array<std::int8_t, 256> kValues = makeValues();

constexpr char kLower[] = "0123456789abcdef";
constexpr char kUpper[] = "0123456789ABCDEF";

}  // namespace

int hexValue(unsigned char c) { return kValues[c]; }

namespace plain {

std::size_t decodeHex(const unsigned char* text, std::size_t count, unsigned char* row, long top) {
  std::size_t done = 0;
  for (; done < count; ++done) {
    const int value = kValues[text[done]];
    if (value < 0) break;
    const long index = top - static_cast<long>(done);
    unsigned char& byte = row[index / 2];
    const auto digit = static_cast<unsigned>(value);
    byte = static_cast<unsigned char>(index % 2 != 0 ? (byte & 0x0fU) | (digit << 4)
                                                     : (byte & 0xf0U) | digit);
  }
  return done;
}

ShortHex decodeShortHex(const unsigned char* text) {
  ShortHex found{0, 0};
  for (; found.digits < 16; ++found.digits) {
    const int value = kValues[text[found.digits]];
    if (value < 0) break;
    found.value = found.value << 4 | static_cast<unsigned>(value);
  }
  return found;
}

void encodeHex16(std::uint64_t bits, HexCase hexCase, char* out) {
  const char* digits = hexCase == HexCase::lower ? kLower : kUpper;
  for (int i = 15; i >= 0; --i) {
    out[i] = digits[bits & 15U];
    bits >>= 4;
  }
}

}  // namespace plain

#if defined(__SSE2__) && defined(__x86_64__)

namespace {

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

}  // namespace

std::size_t decodeHex(const unsigned char* text, std::size_t count, unsigned char* row, long top) {
  constexpr std::size_t kStep = 16;
  std::size_t done = 0;
  while (done < count) {
    unsigned good = 0;
    const __m128i values =
        digitValues(_mm_loadu_si128(reinterpret_cast<const __m128i*>(text + done)), good);
    const auto run = static_cast<std::size_t>(__builtin_ctz(~good));  // 16 when all are
    std::size_t taken = std::min(run, count - done);
    if (taken == 0) break;
    long low = top - static_cast<long>(done + taken) + 1;
    if (taken == kStep && low % 2 != 0) {
      // Between bytes: one digit less, and the next sixteen fill whole bytes.
      --taken;
      ++low;
    }
    const std::uint64_t digits = packDigits(values) >> (4 * (kStep - taken));
    // Up to fifteen digits and half a byte go into one word. What the row holds
    // above them must stay, and what it holds below is still 0.
    unsigned char* const place = row + low / 2;
    std::uint64_t word = 0;
    std::memcpy(&word, place, sizeof word);
    word |= digits << (4 * (low % 2));
    std::memcpy(place, &word, sizeof word);
    done += taken;
    if (run < kStep && taken == run) break;
  }
  return done;
}

ShortHex decodeShortHex(const unsigned char* text) {
  unsigned good = 0;
  const __m128i values = digitValues(_mm_loadu_si128(reinterpret_cast<const __m128i*>(text)), good);
  const auto digits = static_cast<unsigned>(__builtin_ctz(~good));
  if (digits == 0) return {0, 0};
  return {digits, packDigits(values) >> (64 - 4 * digits)};
}

void encodeHex16(std::uint64_t bits, HexCase hexCase, char* out) {
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

#else

ShortHex decodeShortHex(const unsigned char* text) { return plain::decodeShortHex(text); }

std::size_t decodeHex(const unsigned char* text, std::size_t count, unsigned char* row, long top) {
  return plain::decodeHex(text, count, row, top);
}

void encodeHex16(std::uint64_t bits, HexCase hexCase, char* out) {
  plain::encodeHex16(bits, hexCase, out);
}

#endif

}  // namespace tapforge

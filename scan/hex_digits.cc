#include "scan/hex_digits.h"

#include <algorithm>
#include <array>

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

}  // namespace

int hexValue(unsigned char c) { return kValues[c]; }

std::size_t decodeHex(const unsigned char* text, std::size_t count, unsigned char* packed,
                      std::int64_t top) {
  assert(static_cast<std::int64_t>(count) <= top + 1);
  constexpr std::size_t kStep = 16;
  std::size_t done = 0;
  while (done < count) {
    ShortHex found = decodeShortHex(text + done);
    std::size_t taken = std::min<std::size_t>(found.digits, count - done);
    if (taken == 0) break;
    std::int64_t low = top - static_cast<std::int64_t>(done + taken) + 1;
    if (taken == kStep && low % 2 != 0) {
      // Between bytes: one digit less, and the next sixteen fill whole bytes.
      --taken;
      ++low;
    }
    // Up to fifteen digits and half a byte go into one chunk. What is stored above
    // them must stay, and what is stored below is still 0.
    const std::uint64_t digits = found.value >> (4 * (found.digits - taken));
    unsigned char* const place = packed + low / 2;
    storeLittle(place, loadLittle(place) | digits << (4 * (low % 2)));
    done += taken;
    if (found.digits < kStep && taken == found.digits) break;
  }
  return done;
}

namespace scalar {

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
  const char* digits = hexCase == HexCase::lower ? "0123456789abcdef" : "0123456789ABCDEF";
  for (int i = 15; i >= 0; --i) {
    out[i] = digits[bits & 15U];
    bits >>= 4;
  }
}

}  // namespace scalar
}  // namespace tapforge

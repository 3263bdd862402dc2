#ifndef TAPFORGE_SCAN_HEX_OUTPUT_H
#define TAPFORGE_SCAN_HEX_OUTPUT_H

#include <algorithm>

#include "io/output_file.h"
#include "scan/hex_digits.h"

namespace tapforge {

/// Writes digit `low` (0 is the least significant one) and those above it, `count`
/// (1 to 16) hex digits in all, the most significant one first, to `out`, where
/// sixteen characters must be writable. `bits(n)` gives the 64 bits from bit n up.
/// Returns the end of the digits.
template <typename Bits>
inline char* putDigits(char* out, const Bits& bits, std::int64_t low, std::int64_t count,
                       HexCase hexCase) {
  assert(count >= 1 && count <= 16);
  // The digits are moved to the front of a group of sixteen.
  encodeHex16(bits(4 * low) << (64 - 4 * count), hexCase, out);
  return out + count;
}

/// Writes `count` hex digits, from digit `top` downwards; `bits` is as above. Bits
/// above digit `top` do no harm.
template <typename Bits>
void writeDigits(OutputFile& output, const Bits& bits, std::int64_t top, std::int64_t count,
                 HexCase hexCase) {
  constexpr std::int64_t kAtOnce = 256;
  static_assert(OutputFile::kReserve >= kAtOnce);
  if (count <= 16) {
    output.advance(putDigits(output.reserve(16), bits, top - count + 1, count, hexCase));
    return;
  }
  while (count > 0) {
    std::int64_t rest = std::min(count, kAtOnce);
    count -= rest;
    char* out = output.reserve(kAtOnce);
    for (; rest >= 16; rest -= 16, top -= 16) out = putDigits(out, bits, top - 15, 16, hexCase);
    if (rest > 0) out = putDigits(out, bits, top - rest + 1, rest, hexCase);
    top -= rest;
    output.advance(out);
  }
}

}  // namespace tapforge

#endif  // TAPFORGE_SCAN_HEX_OUTPUT_H

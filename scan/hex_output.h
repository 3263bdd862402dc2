#ifndef TAPFORGE_SCAN_HEX_OUTPUT_H
#define TAPFORGE_SCAN_HEX_OUTPUT_H

#include <algorithm>

#include "scan/hex_digits.h"
#include "shell/io/output_file.h"

namespace tapforge {

/// Writes `count` hex digits, from digit `top` downwards, digit 0 being the
/// least significant one. `bits(low)` gives the 64 bits from bit `low` up; bits
/// above the digits asked for do no harm.
template <typename Bits>
void writeManyDigits(OutputFile& output, const Bits& bits, long top, long count, HexCase hexCase) {
  constexpr long kAtOnce = 256;
  while (count > 0) {
    long rest = std::min(count, kAtOnce);
    count -= rest;
    char* out = output.reserve(kAtOnce + 16);
    for (; rest >= 16; rest -= 16, top -= 16, out += 16) {
      encodeHex16(bits(4 * (top - 15)), hexCase, out);
    }
    if (rest > 0) {
      // The last digits, moved to the front of a group of sixteen.
      encodeHex16(bits(4 * (top - rest + 1)) << (64 - 4 * rest), hexCase, out);
      top -= rest;
      out += rest;
    }
    output.advance(out);
  }
}

/// The same, with the short values of most statements out of the loop.
template <typename Bits>
inline void writeDigits(OutputFile& output, const Bits& bits, long top, long count,
                        HexCase hexCase) {
  if (count > 16) {
    writeManyDigits(output, bits, top, count, hexCase);
    return;
  }
  char* const out = output.reserve(16);
  encodeHex16(bits(4 * (top - count + 1)) << (64 - 4 * count), hexCase, out);
  output.advance(out + count);
}

}  // namespace tapforge

#endif  // TAPFORGE_SCAN_HEX_OUTPUT_H

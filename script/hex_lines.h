#ifndef TAPFORGE_SCRIPT_HEX_LINES_H
#define TAPFORGE_SCRIPT_HEX_LINES_H

#include <algorithm>
#include <string_view>

#include "scan/hex_output.h"

namespace tapforge::progmode_svf2tapbus {

/// Hex digits on one line of an SVF value.
inline constexpr std::int64_t kDigitsPerLine = 64;

/// Writes the digits of a value in lines. `eachLine(first)` is called before each
/// line with the number of digits before it.
template <typename Bits, typename EachLine>
void writeHexLines(OutputFile& output, const Bits& bits, std::int64_t digits, HexCase hexCase,
                   std::string_view lineBreak, const EachLine& eachLine) {
  for (std::int64_t first = 0; first < digits; first += kDigitsPerLine) {
    eachLine(first);
    if (first != 0) output.write(lineBreak);
    writeDigits(output, bits, digits - first - 1, std::min(kDigitsPerLine, digits - first),
                hexCase);
  }
}

}  // namespace tapforge::progmode_svf2tapbus

#endif  // TAPFORGE_SCRIPT_HEX_LINES_H

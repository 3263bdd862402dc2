#include "scan/composite.h"

#include <algorithm>
#include <limits>

namespace tapforge {
std::uint64_t CompositeScan::gather(long low) const {
  std::uint64_t bits = 0;
  for (int i = 0; i < count_; ++i) {
    const Piece& piece = pieces_[static_cast<std::size_t>(i)];
    const long from = std::max(low, piece.begin);
    if (piece.end <= from || from - low >= kWord) continue;
    bits |= pieceBits(piece, from - piece.begin) << (from - low);
  }
  return bits;
}

long compositeLength(const RegisterPatterns& patterns, Reporter& report) {
  constexpr long kMost = std::numeric_limits<long>::max();
  long length = 0;
  for (const CTapPattern* pattern : {&patterns.head, &patterns.data, &patterns.trail}) {
    if (pattern->length() > kMost - length) report.fatal("consD[0]", Where::nowhere);
    length += pattern->length();
  }
  return length;
}

}  // namespace tapforge

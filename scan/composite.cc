#include "scan/composite.h"

#include <algorithm>
#include <limits>

namespace tapforge {
namespace {

const CTapField* valueOf(const CTapPattern& pattern, ScanValue value) {
  switch (value) {
    case ScanValue::tdi:
      return pattern.tdi();
    case ScanValue::tdo:
      return pattern.tdo();
    case ScanValue::mask:
      return pattern.mask();
    case ScanValue::smask:
      return pattern.smask();
  }
  return nullptr;
}

}  // namespace

CompositeScan::CompositeScan(const RegisterPatterns& patterns, ScanValue value, long length)
    : length_(length) {
  constexpr std::uint64_t kOnes = ~std::uint64_t{0};
  const bool shifted = value == ScanValue::tdi || value == ScanValue::smask;
  const std::uint64_t fill = shifted ? kOnes : 0;
  const long dataBegin = patterns.head.length();
  const long dataEnd = dataBegin + patterns.data.length();
  const CTapField* const own = valueOf(patterns.data, value);
  addPiece({valueOf(patterns.head, value), fill, 0, dataBegin});
  addPiece({own, kOnes, dataBegin, dataEnd});
  addPiece({valueOf(patterns.trail, value), fill, dataEnd, length});
  if (own != nullptr) {
    body_ = own;
    bodyBegin_ = dataBegin;
    bodyLast_ = dataEnd - kWord;
  }
}

CompositeScan::CompositeScan(const CTapField& field, long length)
    : length_(length), body_(&field), bodyLast_(length - kWord) {
  addPiece({&field, 0, 0, length});
}

// The bits of a piece from one of its own on; 0 above its end.
std::uint64_t CompositeScan::pieceBits(const Piece& piece, long from) {
  const std::uint64_t bits = piece.field != nullptr ? piece.field->bitsAt(from) : piece.fill;
  const long count = piece.end - piece.begin - from;
  return count >= kWord ? bits : bits & ((std::uint64_t{1} << count) - 1);
}

void CompositeScan::addPiece(const Piece& piece) {
  if (piece.begin == piece.end) return;
  if (length_ <= kWord) {
    word_ |= pieceBits(piece, 0) << piece.begin;
  } else {
    pieces_[static_cast<std::size_t>(count_++)] = piece;
  }
}

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

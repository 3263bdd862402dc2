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
  long begin = 0;
  for (const CTapPattern* pattern : {&patterns.head, &patterns.data, &patterns.trail}) {
    if (pattern->length() == 0) continue;
    const bool isData = pattern == &patterns.data;
    pieces_[static_cast<std::size_t>(count_++)] = {
        valueOf(*pattern, value), isData || shifted ? kOnes : 0, begin, begin + pattern->length()};
    begin += pattern->length();
  }
  if (const CTapField* own = valueOf(patterns.data, value); own != nullptr) {
    body_ = own;
    bodyBegin_ = patterns.head.length();
    bodyLast_ = bodyBegin_ + patterns.data.length() - 64;
  }
}

CompositeScan::CompositeScan(const CTapField& field, long length)
    : count_(1), length_(length), body_(&field), bodyLast_(length - 64) {
  pieces_[0] = {&field, 0, 0, length};
}

std::uint64_t CompositeScan::gather(long low) const {
  std::uint64_t bits = 0;
  for (int i = 0; i < count_; ++i) {
    const Piece& piece = pieces_[static_cast<std::size_t>(i)];
    const long from = std::max(low, piece.begin);
    const long count = piece.end - from;
    if (count <= 0 || from - low >= 64) continue;
    std::uint64_t part =
        piece.field != nullptr ? piece.field->bitsAt(from - piece.begin) : piece.fill;
    if (count < 64) part &= (std::uint64_t{1} << count) - 1;
    bits |= part << (from - low);
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

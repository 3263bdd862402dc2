#include "scan/composite.h"

#include <algorithm>

namespace tapforge {

BitSource RegisterScan::sourceOf(const CTapPattern& pattern, ScanValue value) const {
  const bool isMask = exact_ && value == ScanValue::mask;
  if (isMask && pattern.pTdo() == nullptr) return {nullptr, 0};
  const bool ones = isMask || &pattern == &data_;
  return {pattern[value], ones ? ~std::uint64_t{0} : kScanValues[indexOf(value)].fill};
}

// A header's or trailer's bits of at most 64, moved up to their place.
std::uint64_t RegisterScan::frameBits(const CTapPattern& pattern, ScanValue value,
                                      std::int64_t low) const {
  if (pattern.lLength() == 0) return 0;
  return sourceOf(pattern, value).shortBits(pattern.lLength()) << low;
}

void RegisterScan::makeFrame() {
  frameFor_ = data_.lLength();
  std::int64_t sum = 0;
  const bool tooLong = __builtin_add_overflow(head_.lLength(), data_.lLength(), &sum) ||
                       __builtin_add_overflow(sum, trail_.lLength(), &sum);
  length_ = tooLong ? kTooLong : sum;
  if (tooLong || sum > kChunkBits) return;
  for (const ScanValueRow& row : kScanValues) {
    frame_[indexOf(row.value)] =
        frameBits(head_, row.value, 0) | frameBits(trail_, row.value, sum - trail_.lLength());
  }
}

CompositeScan::CompositeScan(const RegisterScan& scan, ScanValue value, std::int64_t length) {
  const std::int64_t dataBegin = scan.head().lLength();
  const std::int64_t dataEnd = dataBegin + scan.data().lLength();
  const BitSource data = scan.sourceOf(scan.data(), value);
  pieces_ = {{{scan.sourceOf(scan.head(), value), 0, dataBegin},
              {data, dataBegin, dataEnd},
              {scan.sourceOf(scan.trail(), value), dataEnd, length}}};
  setBody(data.field, dataBegin, dataEnd);
}

CompositeScan::CompositeScan(const BitSource& source, std::int64_t length) {
  pieces_[0] = {source, 0, length};
  setBody(source.field, 0, length);
}

void CompositeScan::setBody(const CTapField* field, std::int64_t begin, std::int64_t end) {
  if (field == nullptr) return;
  body_ = field;
  bodyBegin_ = begin;
  bodyLast_ = end - kChunkBits;
}

std::uint64_t CompositeScan::gather(std::int64_t low) const {
  assert(low >= 0);
  std::uint64_t bits = 0;
  for (const Piece& piece : pieces_) {
    const std::int64_t from = std::max(low, piece.begin);
    if (piece.end <= from || from - low >= kChunkBits) continue;
    std::uint64_t part = piece.source.field != nullptr
                             ? piece.source.field->bitsAt(from - piece.begin)
                             : piece.source.fill;
    if (piece.end - from < kChunkBits) part &= lowBits(piece.end - from);
    bits |= part << (from - low);
  }
  return bits;
}

}  // namespace tapforge

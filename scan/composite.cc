#include "scan/composite.h"

#include <algorithm>

namespace tapforge {
namespace {

// A header's or trailer's bits of at most 64, moved up to their place.
std::uint64_t frameBits(const CTapPattern& pattern, const ScanValueRow& row, std::int64_t low) {
  if (pattern.lLength() == 0) return 0;
  const CTapField* const field = pattern[row.value];
  const std::uint64_t bits =
      field != nullptr ? field->shortBits() : row.fill & lowBits(pattern.lLength());
  return bits << low;
}

}  // namespace

void RegisterScan::makeFrame() {
  frameFor_ = data_.lLength();
  std::int64_t sum = 0;
  const bool tooLong = __builtin_add_overflow(head_.lLength(), data_.lLength(), &sum) ||
                       __builtin_add_overflow(sum, trail_.lLength(), &sum);
  length_ = tooLong ? kTooLong : sum;
  if (tooLong || sum > kChunkBits) return;
  for (const ScanValueRow& row : kScanValues) {
    frame_[indexOf(row.value)] =
        frameBits(head_, row, 0) | frameBits(trail_, row, sum - trail_.lLength());
  }
}

CompositeScan::CompositeScan(const RegisterScan& scan, ScanValue value, std::int64_t length) {
  const std::int64_t dataBegin = scan.head().lLength();
  const std::int64_t dataEnd = dataBegin + scan.data().lLength();
  const std::uint64_t fill = kScanValues[indexOf(value)].fill;
  pieces_ = {{{scan.head()[value], fill, 0, dataBegin},
              {scan.data()[value], ~std::uint64_t{0}, dataBegin, dataEnd},
              {scan.trail()[value], fill, dataEnd, length}}};
  setBody(scan.data()[value], dataBegin, dataEnd);
}

CompositeScan::CompositeScan(const CTapField& field, std::int64_t length) {
  pieces_[0] = {&field, 0, 0, length};
  setBody(&field, 0, length);
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
    std::uint64_t part =
        piece.field != nullptr ? piece.field->bitsAt(from - piece.begin) : piece.fill;
    if (piece.end - from < kChunkBits) part &= lowBits(piece.end - from);
    bits |= part << (from - low);
  }
  return bits;
}

}  // namespace tapforge

#ifndef TAPFORGE_SCAN_COMPOSITE_H
#define TAPFORGE_SCAN_COMPOSITE_H

#include <array>
#include <cstdint>

#include "scan/tap_obj.h"
#include "shell/reporter.h"

namespace tapforge {

/// One value of the scan of a whole chain: the header's bits lowest (shifted
/// first), then the statement's own, then the trailer's. The pieces are read
/// where they lie, 64 bits at a time; nothing is joined in memory. Views of it
/// are good until one of the patterns changes.
///
/// A header or trailer without the value is filled with 1s for TDI and SMASK
/// and with 0s for TDO and MASK; the statement's own part is filled with 1s.
class CompositeScan {
 public:
  /// `length` is that of compositeLength().
  CompositeScan(const RegisterPatterns& patterns, ScanValue value, long length) : length_(length) {
    const std::uint64_t fill = value == ScanValue::tdi || value == ScanValue::smask ? kOnes : 0;
    const long dataBegin = patterns.head.length();
    const long dataEnd = dataBegin + patterns.data.length();
    addPiece({patterns.head[value], fill, 0, dataBegin});
    addPiece({patterns.data[value], kOnes, dataBegin, dataEnd});
    addPiece({patterns.trail[value], fill, dataEnd, length});
    setBody(patterns.data[value], dataBegin, dataEnd);
  }

  /// A value of a single pattern, on its own.
  CompositeScan(const CTapField& field, long length) : length_(length) {
    addPiece({&field, 0, 0, length});
    setBody(&field, 0, length);
  }

  long length() const { return length_; }  // bits
  long digits() const { return length_ / 4 + (length_ % 4 != 0 ? 1 : 0); }

  /// Bits `low` (at least 0) to `low` + 63; those above the length are 0.
  std::uint64_t bits(long low) const {
    if (low >= bodyBegin_ && low <= bodyLast_) return body_->bitsAt(low - bodyBegin_);
    return length_ <= kWord ? word_ >> low : gather(low);
  }

 private:
  struct Piece {
    const CTapField* field;  // null: `fill` in every bit
    std::uint64_t fill;
    long begin;  // composite bit of the piece's bit 0
    long end;
  };

  static constexpr long kWord = 64;
  static constexpr std::uint64_t kOnes = ~std::uint64_t{0};

  // The bits of a piece from one of its own on; 0 above its end.
  static std::uint64_t pieceBits(const Piece& piece, long from) {
    const std::uint64_t bits = piece.field != nullptr ? piece.field->bitsAt(from) : piece.fill;
    const long count = piece.end - piece.begin - from;
    return count >= kWord ? bits : bits & ((std::uint64_t{1} << count) - 1);
  }

  void addPiece(const Piece& piece) {
    if (piece.begin == piece.end) return;
    if (length_ <= kWord) {
      word_ |= pieceBits(piece, 0) << piece.begin;
    } else {
      pieces_[static_cast<std::size_t>(count_++)] = piece;
    }
  }

  void setBody(const CTapField* field, long begin, long end) {
    if (field == nullptr) return;
    body_ = field;
    bodyBegin_ = begin;
    bodyLast_ = end - kWord;
  }

  std::uint64_t gather(long low) const;

  long length_;
  std::uint64_t word_ = 0;  // all of it, when it fits
  // A word that begins in here lies wholly in the statement's own value.
  const CTapField* body_ = nullptr;
  long bodyBegin_ = 0;
  long bodyLast_ = -1;
  std::array<Piece, 3> pieces_;  // from the header up, when it does not fit
  int count_ = 0;
};

/// Header, data and trailer together, in bits. Lengths that no long can hold
/// are fatal: "consD[0]".
long compositeLength(const RegisterPatterns& patterns, Reporter& report);

}  // namespace tapforge

#endif  // TAPFORGE_SCAN_COMPOSITE_H

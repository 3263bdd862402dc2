#ifndef TAPFORGE_SCAN_COMPOSITE_H
#define TAPFORGE_SCAN_COMPOSITE_H

#include <array>
#include <cstdint>

#include "scan/tap_obj.h"
#include "shell/io/reporter.h"

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
  // The pieces are filled in only where they are used: these constructors run
  // for every value of every short statement.
  // NOLINTBEGIN(cppcoreguidelines-pro-type-member-init)

  /// `length` is that of compositeLength().
  CompositeScan(const RegisterPatterns& patterns, ScanValue value, long length) : length_(length) {
    if (length <= kWord) {
      setWord(patterns, value);
      return;
    }
    const std::uint64_t fill = fillOf(value);
    const long dataBegin = patterns.head.length();
    const long dataEnd = dataBegin + patterns.data.length();
    addPiece({patterns.head[value], fill, 0, dataBegin});
    addPiece({patterns.data[value], kOnes, dataBegin, dataEnd});
    addPiece({patterns.trail[value], fill, dataEnd, length});
    setBody(patterns.data[value], dataBegin, dataEnd);
  }

  /// A value of a single pattern, on its own.
  CompositeScan(const CTapField& field, long length) : length_(length) {
    if (length <= kWord) {
      word_ = field.shortBits() & lowBits(length);
      return;
    }
    addPiece({&field, 0, 0, length});
    setBody(&field, 0, length);
  }

  // NOLINTEND(cppcoreguidelines-pro-type-member-init)

  long length() const { return length_; }  // bits
  long digits() const { return static_cast<long>((static_cast<unsigned long>(length_) + 3) / 4); }

  /// Bits `low` (at least 0) to `low` + 63; those above the length are 0.
  std::uint64_t bits(long low) const {
    if (length_ <= kWord) return word_ >> low;
    if (low >= bodyBegin_ && low <= bodyLast_) return body_->bitsAt(low - bodyBegin_);
    return gather(low);
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

  static std::uint64_t fillOf(ScanValue value) {
    return value == ScanValue::tdi || value == ScanValue::smask ? kOnes : 0;
  }

  // `count` (1 to 64) 1s.
  static std::uint64_t lowBits(long count) { return kOnes >> (kWord - count); }

  // All bits of a value of 1 to 64 bits.
  static std::uint64_t shortBits(const CTapPattern& pattern, ScanValue value, std::uint64_t fill) {
    const CTapField* const field = pattern[value];
    return (field != nullptr ? field->shortBits() : fill) & lowBits(pattern.length());
  }

  // The pieces joined in one word. Empty ones are left out, so that no shift is
  // by 64.
  void setWord(const RegisterPatterns& patterns, ScanValue value) {
    const std::uint64_t fill = fillOf(value);
    const long dataBegin = patterns.head.length();
    const long dataEnd = dataBegin + patterns.data.length();
    if (dataBegin != 0) word_ = shortBits(patterns.head, value, fill);
    if (dataEnd != dataBegin) word_ |= shortBits(patterns.data, value, kOnes) << dataBegin;
    if (dataEnd != length_) word_ |= shortBits(patterns.trail, value, fill) << dataEnd;
  }

  // The bits of a piece from one of its own on; 0 above its end.
  static std::uint64_t pieceBits(const Piece& piece, long from) {
    const std::uint64_t bits = piece.field != nullptr ? piece.field->bitsAt(from) : piece.fill;
    const long count = piece.end - piece.begin - from;
    return count >= kWord ? bits : bits & lowBits(count);
  }

  void addPiece(const Piece& piece) {
    if (piece.begin == piece.end) return;
    pieces_[static_cast<std::size_t>(count_++)] = piece;
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

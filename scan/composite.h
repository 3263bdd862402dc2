#ifndef TAPFORGE_SCAN_COMPOSITE_H
#define TAPFORGE_SCAN_COMPOSITE_H

#include <array>
#include <cstdint>

#include "scan/tap_pattern.h"

namespace tapforge {

/// Bits of a value: those of a field, or the same one everywhere.
struct BitSource {
  const CTapField* field = nullptr;  // then `fill`
  std::uint64_t fill = ~std::uint64_t{0};

  /// All of them, where they are at most 64.
  std::uint64_t shortBits(std::int64_t length) const {
    return field != nullptr ? field->shortBits() : fill & lowBits(length);
  }
};

/// The header, data and trailer patterns of one register, and the scans of the
/// whole chain that they make together: the header's bits lowest (shifted
/// first), then the statement's own, then the trailer's.
///
/// A header or trailer that has bits has a TDI; without SMASK it is filled with 1s,
/// without TDO or MASK with 0s. The statement's own bits are filled with 1s.
///
/// What is compared is what a MASK says in a scan that has a TDO. With compareExactly()
/// it is what SVF means: the bits of each of the three that has a TDO, under its MASK
/// if it has one.
class RegisterScan {
 public:
  /// The patterns are borrowed.
  RegisterScan(const CTapPattern& head, const CTapPattern& data, const CTapPattern& trail)
      : head_(head), data_(data), trail_(trail) {}

  const CTapPattern& head() const { return head_; }
  const CTapPattern& data() const { return data_; }
  const CTapPattern& trail() const { return trail_; }

  void compareExactly() { exact_ = true; }
  /// Whether a scan now would have bits to compare.
  bool compares() const {
    return data_.pTdo() != nullptr ||
           (exact_ && (head_.pTdo() != nullptr || trail_.pTdo() != nullptr));
  }

  /// Must be called when header or trailer have changed.
  void frameChanged() { frameFor_ = kUnknown; }

  static constexpr std::int64_t kTooLong = -1;

  /// Header, data and trailer together, in bits; kTooLong when no number can hold
  /// the sum.
  std::int64_t length() {
    if (frameFor_ != data_.lLength()) makeFrame();
    return length_;
  }

  /// All bits of a value of a scan whose length() is at most 64: the short scans
  /// of most files, for which nothing has to be set up.
  std::uint64_t shortBits(ScanValue value) const {
    assert(frameFor_ == data_.lLength() && length_ <= kChunkBits);
    const CTapField* const field = data_[value];
    if (value == ScanValue::mask && exact_ && data_.pTdo() == nullptr)
      return frame_[indexOf(value)];
    const std::uint64_t bits = field != nullptr ? field->shortBits() : lowBits(data_.lLength());
    return frame_[indexOf(value)] | bits << head_.lLength();
  }

  /// A value of header, data or trailer, or what it is filled with.
  BitSource sourceOf(const CTapPattern& pattern, ScanValue value) const;

 private:
  void makeFrame();
  std::uint64_t frameBits(const CTapPattern& pattern, ScanValue value, std::int64_t low) const;

  static constexpr std::int64_t kUnknown = -1;

  const CTapPattern& head_;
  const CTapPattern& data_;
  const CTapPattern& trail_;
  std::int64_t frameFor_ = kUnknown;  // bits of data that the rest was worked out for
  std::int64_t length_ = 0;
  bool exact_ = false;
  // Header and trailer bits of each value, in their places, of a short scan.
  std::array<std::uint64_t, kScanValues.size()> frame_{};
};

/// One value of a scan of any length. The pieces are read where they lie, 64
/// bits at a time; nothing is joined in memory. Good until one of the patterns
/// changes.
class CompositeScan {
 public:
  /// A value of the whole chain's scan; `length` is that of RegisterScan::length().
  CompositeScan(const RegisterScan& scan, ScanValue value, std::int64_t length);

  /// A single value, on its own.
  CompositeScan(const BitSource& source, std::int64_t length);

  /// Bits `low` (0 to length - 1) to `low` + 63; those above the length are 0.
  std::uint64_t operator()(std::int64_t low) const {
    if (low >= bodyBegin_ && low <= bodyLast_) return body_->bitsAt(low - bodyBegin_);
    return gather(low);
  }

 private:
  struct Piece {
    BitSource source;
    std::int64_t begin = 0;  // the scan's bit that is the piece's bit 0
    std::int64_t end = 0;
  };

  void setBody(const CTapField* field, std::int64_t begin, std::int64_t end);
  std::uint64_t gather(std::int64_t low) const;

  // For low in [bodyBegin_, bodyLast_] all 64 bits come from body_ alone.
  const CTapField* body_ = nullptr;
  std::int64_t bodyBegin_ = 0;
  std::int64_t bodyLast_ = -1;
  std::array<Piece, 3> pieces_{};  // from the header up; empty ones take no part
};

/// A value of at most 64 bits, in the form of CompositeScan.
struct ShortScan {
  std::uint64_t bits;
  std::uint64_t operator()(std::int64_t low) const { return bits >> low; }
};

}  // namespace tapforge

#endif  // TAPFORGE_SCAN_COMPOSITE_H

#ifndef TAPFORGE_SCAN_TAP_PATTERN_H
#define TAPFORGE_SCAN_TAP_PATTERN_H

#include <array>
#include <cstddef>

#include "scan/tap_field.h"

namespace tapforge {

/// The four values of a scan: bits shifted in, bits expected out, which of
/// these are compared, which of those shifted in matter.
enum class ScanValue : unsigned char { tdi, tdo, mask, smask };

/// A set of the four values.
class ScanValues {
 public:
  bool has(ScanValue value) const { return (bits_ & bitOf(value)) != 0; }
  void add(ScanValue value) { bits_ |= bitOf(value); }
  void add(ScanValues values) { bits_ |= values.bits_; }
  void remove(ScanValue value) { bits_ &= ~bitOf(value); }
  bool operator==(const ScanValues&) const = default;

 private:
  static unsigned bitOf(ScanValue value) { return 1U << static_cast<unsigned>(value); }
  unsigned bits_ = 0;
};

/// What one scan statement gives: its length in bits and some of the values,
/// whose bits are in the pattern's storage already.
struct ScanData {
  long lLength = 0;
  ScanValues given;
};

/// The values in force for one kind of scan (SIR, SDR, HIR, HDR, TIR or TDR),
/// with SVF's rules for what carries over from statement to statement.
class CTapPattern {
 public:
  /// Puts in force what a statement gives. While the length stays the same TDI,
  /// MASK and SMASK stand until given again and TDO must be given each time; a
  /// new length drops all of them and must come with a TDI. Length 0 clears.
  /// False when TDI is missing: the pattern is then of no more use, since the
  /// values given are stored and those before are lost.
  [[nodiscard]] bool setPattern(const ScanData& data);

  long length() const { return lLength_; }  // bits
  /// Null when the value is not in force.
  const CTapField* operator[](ScanValue value) const {
    return inForce_.has(value) ? &fields_[static_cast<std::size_t>(value)] : nullptr;
  }

  /// Where the statement being read puts a value that it gives anew. There is
  /// one storage for the old and the new one, so both never exist together;
  /// setPattern() must follow.
  CTapField& storage(ScanValue value) {
    held_.add(value);
    return fields_[static_cast<std::size_t>(value)];
  }

 private:
  void freeUnused();

  long lLength_ = 0;
  ScanValues inForce_;
  ScanValues held_;  // fields that may hold more than a little storage
  std::array<CTapField, 4> fields_;
};

}  // namespace tapforge

#endif  // TAPFORGE_SCAN_TAP_PATTERN_H

#ifndef TAPFORGE_SCAN_TAP_PATTERN_H
#define TAPFORGE_SCAN_TAP_PATTERN_H

#include <array>
#include <cstddef>
#include <memory>
#include <utility>

#include "scan/tap_field.h"

namespace tapforge {

/// A value that a statement did not give, or that is not in force, is null.
using FieldPtr = std::unique_ptr<CTapField>;

/// The four values of a scan: bits shifted in, bits expected out, which of
/// these are compared, which of those shifted in matter.
enum class ScanValue : unsigned char { tdi, tdo, mask, smask };

/// What one scan statement gives: its length in bits and up to four values.
class ScanValues {
 public:
  long lLength = 0;
  FieldPtr& operator[](ScanValue value) { return fields_[static_cast<std::size_t>(value)]; }
  const FieldPtr& operator[](ScanValue value) const {
    return fields_[static_cast<std::size_t>(value)];
  }

 private:
  std::array<FieldPtr, 4> fields_;
};

/// The values in force for one kind of scan (SIR, SDR, HIR, HDR, TIR or TDR),
/// with SVF's rules for what carries over from statement to statement.
class CTapPattern {
 public:
  /// Takes over what a statement gives. While the length stays the same TDI,
  /// MASK and SMASK stand until given again and TDO must be given each time; a
  /// new length drops all of them and must come with a TDI. Length 0 clears.
  /// False when TDI is missing: the pattern is as before.
  [[nodiscard]] bool setPattern(ScanValues& given);

  long length() const { return now_.lLength; }  // bits
  /// Null when the value is not in force.
  const CTapField* operator[](ScanValue value) const { return now_[value].get(); }

  /// Gives up a value that the statement being read gives anew, so that its
  /// storage serves the new one and both never exist together.
  FieldPtr giveUp(ScanValue value) { return std::move(now_[value]); }

 private:
  ScanValues now_;
};

}  // namespace tapforge

#endif  // TAPFORGE_SCAN_TAP_PATTERN_H

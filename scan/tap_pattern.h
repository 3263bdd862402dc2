#ifndef TAPFORGE_SCAN_TAP_PATTERN_H
#define TAPFORGE_SCAN_TAP_PATTERN_H

#include <memory>

#include "scan/tap_field.h"

namespace tapforge {

/// A value that a statement did not give, or that is not in force, is null.
using FieldPtr = std::unique_ptr<CTapField>;

/// What one scan statement gives: its length in bits and up to four values.
struct ScanValues {
  long lLength = 0;
  FieldPtr pTdi;
  FieldPtr pTdo;
  FieldPtr pMask;
  FieldPtr pSmask;
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
  const CTapField* tdi() const { return now_.pTdi.get(); }
  const CTapField* tdo() const { return now_.pTdo.get(); }
  const CTapField* mask() const { return now_.pMask.get(); }
  const CTapField* smask() const { return now_.pSmask.get(); }

  /// Gives up a value that the statement being read gives anew, so that its
  /// storage serves the new one and both never exist together. `kind` picks it:
  /// &ScanValues::pTdi and so on.
  FieldPtr giveUp(FieldPtr ScanValues::*kind) { return std::move(now_.*kind); }

 private:
  ScanValues now_;
};

}  // namespace tapforge

#endif  // TAPFORGE_SCAN_TAP_PATTERN_H

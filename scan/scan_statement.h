#ifndef TAPFORGE_SCAN_SCAN_STATEMENT_H
#define TAPFORGE_SCAN_SCAN_STATEMENT_H

#include "scan/tap_obj.h"
#include "svf/file_channel.h"
#include "svf/keyword.h"

namespace tapforge {

/// Reads the rest of a scan, header or trailer statement (SIR to TDR), up to its
/// ";", and puts its values in force in the statement's pattern: the length and
/// the TDI, TDO, MASK and SMASK values in parentheses, each at most once, in any
/// order. For SIR and SDR a length below 1 is fatal; for the others the rest of
/// the statement is then skipped. A TDO that comes with an all-zero MASK compares
/// nothing and is dropped.
///
/// False when SVF's rules ask for a TDI that is missing: the caller must then end
/// the run by endByRuleViolation().
[[nodiscard]] bool readTapData(Keyword keyword, CTapObj& tap, FileChannel& channel);

/// Fatal "SVF rule violation", after the warning that says which.
[[noreturn]] void endByRuleViolation(Reporter& report);

/// The length in bits of the scan of the whole chain. One that no number can hold
/// is fatal: "consD[0]".
inline std::int64_t compositeLength(RegisterScan& scan, Reporter& report) {
  const std::int64_t length = scan.length();
  if (length == RegisterScan::kTooLong) report.fatal("consD[0]", Where::nowhere);
  return length;
}

/// Makes a field all zero, `length` bits (at least 1) long. Memory that cannot be
/// had is fatal: "Null Ptr [pData NULL]".
void initTapField(CTapField& field, std::int64_t length, Reporter& report);

}  // namespace tapforge

#endif  // TAPFORGE_SCAN_SCAN_STATEMENT_H

#ifndef TAPFORGE_SCAN_SCAN_STATEMENT_H
#define TAPFORGE_SCAN_SCAN_STATEMENT_H

#include "scan/tap_pattern.h"
#include "svf/run.h"

namespace tapforge {

/// Reads the rest of a scan statement, up to its ";": the length and the TDI,
/// TDO, MASK and SMASK values in parentheses, each at most once, in any order.
/// With `dataRequired` (SIR, SDR) a length below 1 is fatal; without it the
/// rest of the statement is then skipped. A TDO that comes with an all-zero
/// MASK compares nothing and is dropped.
///
/// `pattern` is the one that the values are meant for. They are read into its
/// storage, see CTapPattern::storage(), and put in force by setPattern().
ScanData readTapData(bool dataRequired, CTapPattern& pattern, Run& run);

/// Reads one parenthesised hex value into `field`, `length` bits long. White
/// space may stand anywhere in it. Missing digits are 0 and the most
/// significant ones; surplus digits push out the most significant ones, with a
/// warning for each that is not 0, and so do 1s above the length.
void readSvfHexData(long length, CTapField& field, Run& run);

}  // namespace tapforge

#endif  // TAPFORGE_SCAN_SCAN_STATEMENT_H

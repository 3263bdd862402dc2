#include "scan/tap_pattern.h"

namespace tapforge {

bool CTapPattern::setPattern(std::int64_t length, ScanValues given) {
  if (length != lLength_) {
    if (length != 0 && !given.has(ScanValue::tdi)) return false;
    lLength_ = length;
    inForce_ = given;
  } else {
    // Expected values never carry over.
    inForce_.remove(ScanValue::tdo);
    inForce_.add(given);
  }
  if (held_ != inForce_) freeUnused();
  return true;
}

// Storage of values that are no longer in force; a little is kept for the next
// statement.
void CTapPattern::freeUnused() {
  for (const ScanValueRow& row : kScanValues) {
    if (!inForce_.has(row.value)) fields_[indexOf(row.value)].freeLarge();
  }
  held_ = inForce_;
}

}  // namespace tapforge

#include "scan/tap_pattern.h"

namespace tapforge {

bool CTapPattern::setPattern(const ScanData& data) {
  if (data.lLength != lLength_) {
    if (data.lLength != 0 && !data.given.has(ScanValue::tdi)) return false;
    lLength_ = data.lLength;
    inForce_ = data.given;
  } else {
    // Expected values never carry over.
    inForce_.remove(ScanValue::tdo);
    inForce_.add(data.given);
  }
  if (held_ != inForce_) freeUnused();
  return true;
}

// Storage of values that are no longer in force; a little is kept for the next
// statement.
void CTapPattern::freeUnused() {
  for (const ScanValue value :
       {ScanValue::tdi, ScanValue::tdo, ScanValue::mask, ScanValue::smask}) {
    if (!inForce_.has(value)) fields_[static_cast<std::size_t>(value)].freeLarge();
  }
  held_ = inForce_;
}

}  // namespace tapforge

#include "scan/tap_pattern.h"

#include <utility>

namespace tapforge {

bool CTapPattern::setPattern(ScanValues& given) {
  if (given.lLength == 0) {
    now_ = ScanValues{};
    return true;
  }
  if (given.lLength != now_.lLength) {
    if (given[ScanValue::tdi] == nullptr) return false;
    now_ = std::move(given);
    return true;
  }
  for (const ScanValue value : {ScanValue::tdi, ScanValue::mask, ScanValue::smask}) {
    if (given[value] != nullptr) now_[value] = std::move(given[value]);
  }
  // Expected values never carry over.
  now_[ScanValue::tdo] = std::move(given[ScanValue::tdo]);
  return true;
}

}  // namespace tapforge

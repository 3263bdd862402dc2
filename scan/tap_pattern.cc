#include "scan/tap_pattern.h"

#include <utility>

namespace tapforge {
namespace {

void replaceIfGiven(FieldPtr& value, FieldPtr& given) {
  if (given != nullptr) value = std::move(given);
}

}  // namespace

bool CTapPattern::setPattern(ScanValues& given) {
  if (given.lLength == 0) {
    now_ = ScanValues{};
    return true;
  }
  if (given.lLength != now_.lLength) {
    if (given.pTdi == nullptr) return false;
    now_ = std::move(given);
    return true;
  }
  replaceIfGiven(now_.pTdi, given.pTdi);
  replaceIfGiven(now_.pSmask, given.pSmask);
  replaceIfGiven(now_.pMask, given.pMask);
  // Expected values never carry over.
  now_.pTdo = std::move(given.pTdo);
  return true;
}

}  // namespace tapforge

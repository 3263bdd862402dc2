#include "replay/steps.h"

namespace tapforge_replay {

void Steps::read() {
  isReading = true;
  reader.next(operation);
  isReading = false;
  using enum Operation::Kind;
  const bool isTwoSided = operation.kind == kScan || operation.kind == kWait;
  at_ = 0;
  before_ = isTwoSided || operation.kind == kMove ? operation.before.size() : 0;
  count_ = before_ + 1 + (isTwoSided ? operation.after.size() : 0);
}

// Returns false where the operation is no more than the states that it enters.
bool Steps::isOwnStep() {
  using enum Operation::Kind;
  kind = operation.kind == kScan   ? Kind::kScan
         : operation.kind == kWait ? Kind::kWait
         : operation.kind == kEnd  ? Kind::kEnd
                                   : Kind::kSetting;
  scans += kind == Kind::kScan ? 1 : 0;
  waits += kind == Kind::kWait ? 1 : 0;
  wait = operation.wait;
  const bool isAbsent = operation.kind == kResetLine && operation.word == "absent";
  return operation.kind != kMove && operation.kind != kEndState && !isAbsent;
}

// A TCK that stays in a stable state is a wait; in a shift state it shifts a bit.
// Returns false for a reset of a TAP that was reset.
bool Steps::enter(TapState next) {
  const bool isStay = !isFresh_ && next == state && isStable(next);
  isFresh_ = false;
  kind = isStay ? Kind::kWait : Kind::kState;
  state = next;
  wait = {.state = next, .clocks = 1};
  return !isStay || next != TapState::kReset;
}

void Steps::next() {
  isImplied = isFresh_ && reader.beginsWithReset();
  isFresh_ = isFresh_ && !isImplied;
  for (bool isStep = isImplied; !isStep; ++at_) {
    if (at_ == count_) read();
    isStep = at_ < before_    ? enter(operation.before[at_])
             : at_ == before_ ? isOwnStep()
                              : enter(operation.after[at_ - before_ - 1]);
  }
}

}  // namespace tapforge_replay

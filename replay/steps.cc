#include "replay/steps.h"

namespace tapforge_replay {

using enum Operation::Kind;

bool Steps::isSetting() const {
  return kind == kResetLine || kind == kFrequency || kind == kParallelIo;
}

// Returns false where the operation is no more than the states that it enters.
bool Steps::isOwnStep() {
  kind = operation.kind;
  wait = operation.wait;
  scans += kind == kScan ? 1 : 0;
  waits += kind == kWait ? 1 : 0;
  const bool isAbsent = kind == kResetLine && operation.word == "absent";
  return kind != kMove && kind != kEndState && !isAbsent;
}

// A TCK that stays in a stable state is a wait; in a shift state it shifts a bit.
// Returns false for a reset of a TAP that was reset.
bool Steps::enter(TapState next) {
  const bool isStay = !isFresh_ && next == state && isStable(next);
  isFresh_ = false;
  kind = isStay ? kWait : kMove;
  state = next;
  wait = {.state = next, .clocks = 1};
  return !isStay || next != TapState::kReset;
}

void Steps::next() {
  isImplied = isFresh_ && reader.beginsWithReset();
  isFresh_ = isFresh_ && !isImplied;
  for (bool isStep = isImplied; !isStep; ++at_) {
    if (at_ == count_) {
      isReading = true;
      reader.next(operation);
      isReading = false;
      const bool isTwoSided = operation.kind == kScan || operation.kind == kWait;
      at_ = 0;
      before_ = isTwoSided || operation.kind == kMove ? operation.before.size() : 0;
      count_ = before_ + 1 + (isTwoSided ? operation.after.size() : 0);
    }
    isStep = at_ < before_    ? enter(operation.before[at_])
             : at_ == before_ ? isOwnStep()
                              : enter(operation.after[at_ - before_ - 1]);
  }
}

}  // namespace tapforge_replay

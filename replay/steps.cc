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
  switch (operation.kind) {
    case Operation::Kind::kScan:
      kind = Kind::kScan;
      ++scans;
      return true;
    case Operation::Kind::kWait:
      kind = Kind::kWait;
      wait = operation.wait;
      ++waits;
      return true;
    case Operation::Kind::kResetLine:
      if (operation.word == "absent") return false;  // there is none to be set
      [[fallthrough]];
    case Operation::Kind::kFrequency:
    case Operation::Kind::kParallelIo:
      kind = Kind::kSetting;
      return true;
    case Operation::Kind::kEnd:
      kind = Kind::kEnd;
      return true;
    case Operation::Kind::kMove:
    case Operation::Kind::kEndState:  // seen in the moves after the scans
      break;
  }
  return false;
}

// Returns false for a reset of a TAP that was reset. TCKs that stay in another stable
// state are a wait; in a shift state each shifts a bit.
bool Steps::enter() {
  const bool isAfter = at_ > before_;
  const std::vector<TapState>& states = isAfter ? operation.after : operation.before;
  const std::size_t first = isAfter ? before_ + 1 : 0;
  const TapState from = state;
  state = states[at_ - first];
  kind = Kind::kState;
  if (isFresh_ || from != state || !isStable(state)) {
    isFresh_ = false;
    return true;
  }
  if (state == TapState::kReset) return false;
  kind = Kind::kWait;
  wait = {.state = state, .clocks = 1};
  for (; at_ + 1 - first < states.size() && states[at_ + 1 - first] == state; ++at_) ++wait.clocks;
  return true;
}

void Steps::next() {
  isImplied = isFresh_ && reader.beginsWithReset();
  if (isImplied) {
    isFresh_ = false;
    return;
  }
  for (;; ++at_) {
    if (at_ == count_) read();
    if (at_ == before_ ? isOwnStep() : enter()) break;
  }
  if (kind != Kind::kEnd) ++at_;
}

void Steps::skipToEnd() {
  while (kind != Kind::kEnd) next();
}

}  // namespace tapforge_replay

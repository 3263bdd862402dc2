#include "svf/state_statements.h"

#include "io/text.h"

namespace tapforge {

TapState checkTapState(StateUse use, std::string_view message, FileChannel& channel) {
  const std::string name = channel.tokenLower();
  const TapState state = tapStateNamed(name);
  if (state == TapState::unknown || (use == StateUse::stable && !isStable(state))) {
    channel.report().fatal(concat("[", name, "]: ", message));
  }
  return state;
}

TapState readEndState(FileChannel& channel) {
  channel.lex();
  const TapState state = checkTapState(StateUse::stable, "invalid end state", channel);
  channel.strSearch(";");
  return state;
}

std::optional<PathStep> StatePathReader::next() {
  if (channel_.lexIs(";")) {
    checkFinalState();
    return std::nullopt;
  }
  const TapState state = checkTapState(StateUse::path, "invalid path/stable state", channel_);
  const bool oneClock = previous_ == TapState::unknown || checkTapPath(previous_, state);
  if (!oneClock && first_) checkTapState(StateUse::stable, "invalid stable state", channel_);
  if (!oneClock && !first_) {
    const std::string_view name = getTapStateName(previous_);
    channel_.report().fatal(channel_.rules().pathErrorNamesState
                                ? concat("Invalid pathstate from state ", name)
                                : "Invalid pathstate");
  }
  previous_ = state;
  first_ = false;
  return PathStep{state, oneClock, channel_.tokenAsWritten()};
}

void StatePathReader::checkFinalState() {
  Reporter& report = channel_.report();
  if (previous_ == TapState::unknown) report.warning("GTSN: TAPstate ?", Where::nowhere);
  if (isStable(previous_)) return;
  report.fatal(concat("[", getTapStateName(previous_),
                      "]: stable state must be RESET/IDLE/DRPAUSE/IRPAUSE"));
}

}  // namespace tapforge

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

TapState readStatePath(TapState start, FileChannel& channel,
                       const std::function<void(const PathStep&)>& take) {
  Reporter& report = channel.report();
  TapState from = start;
  bool first = true;
  for (; !channel.lexIs(";"); first = false) {
    const TapState state = checkTapState(StateUse::path, "invalid path/stable state", channel);
    const bool oneClock = from == TapState::unknown || checkTapPath(from, state);
    if (!oneClock && first) checkTapState(StateUse::stable, "invalid stable state", channel);
    if (!oneClock && !first) {
      report.fatal(channel.rules().pathErrorNamesState
                       ? concat("Invalid pathstate from state ", getTapStateName(from))
                       : "Invalid pathstate");
    }
    take({from, state, oneClock, channel.tokenAsWritten()});
    from = state;
  }
  if (first && channel.rules().exact) report.fatal("-exact: a STATE without a state");
  if (from == TapState::unknown) report.warning("GTSN: TAPstate ?", Where::nowhere);
  if (!isStable(from)) {
    report.fatal(
        concat("[", getTapStateName(from), "]: stable state must be RESET/IDLE/DRPAUSE/IRPAUSE"));
  }
  return from;
}

}  // namespace tapforge

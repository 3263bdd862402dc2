#include "svf/state_statements.h"

#include "shell/io/text.h"

namespace tapforge {

TapState readEndState(ScanRegister which, Run& run) {
  run.lexer.lex();
  const TapState state = checkTapState(StateUse::stable, "invalid end state", run.lexer);
  (which == ScanRegister::instruction ? run.tap.iEndIrState : run.tap.iEndDrState) = state;
  run.lexer.strSearch(";");
  return state;
}

TapState readPathState(Run& run) {
  return checkTapState(StateUse::path, "invalid path/stable state", run.lexer);
}

void checkFinalState(TapState state, Run& run) {
  if (state == TapState::unknown) run.report.warning("GTSN: TAPstate ?", Where::nowhere);
  if (state != TapState::unknown && isStable(state)) return;
  run.report.fatal(
      concat("[", getTapStateName(state), "]: stable state must be RESET/IDLE/DRPAUSE/IRPAUSE"));
}

}  // namespace tapforge

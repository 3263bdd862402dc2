#include "vector/move_writer.h"

#include <algorithm>
#include <span>

#include "shell/io/text.h"

namespace progmode_svf2ksvf {
namespace {

using enum tapforge::TapState;
using tapforge::concat;
using tapforge::Where;

// The ways between the stable states, without their start. A way from a pause
// state to itself goes all the way round.
constexpr TapState kToReset[] = {drselect, irselect, reset};
constexpr TapState kToDrPause[] = {drselect, drcapture, drexit1, drpause};
constexpr TapState kToIrPause[] = {drselect, irselect, ircapture, irexit1, irpause};
constexpr TapState kOutOfDrPause[] = {drexit2, drupdate};
constexpr TapState kOutOfIrPause[] = {irexit2, irupdate};
constexpr TapState kToIdle[] = {idle};

}  // namespace

void MoveWriter::addTapTransition(TapState state) {
  if (vars_.iV2Compatibility) return;
  const long number = static_cast<long>(state);
  // The minimum set that a player of version 4 knows: reset and idle.
  if (vars_.iOptMinKstateUsage && number > 1) return;
  bytes_.list("KSTATE 0x");
  bytes_.list(tapforge::paddedHex(static_cast<std::uint32_t>(number), 2, tapforge::HexCase::lower));
  bytes_.list("\n");
  bytes_.commandWith(Command::KSTATE, number, 2);
}

// Both are stable, and one clock does not lead from one to the other.
void MoveWriter::doStableState(TapState from, TapState to) {
  const auto go = [this](std::span<const TapState> way) {
    for (const TapState state : way) addTapTransition(state);
  };
  if (from == drpause) go(kOutOfDrPause);
  if (from == irpause) go(kOutOfIrPause);
  if (from == reset || to == idle) go(kToIdle);
  if (to == reset) go(kToReset);
  if (to == drpause) go(kToDrPause);
  if (to == irpause) go(kToIrPause);
}

void MoveWriter::doState() {
  scans_.writePending(RunCount::reset);
  const TapState start = run_.tap.iCurState;
  TapState previous = start;
  bool first = true;
  while (!run_.lexer.lexIs(";")) {
    const TapState state = tapforge::readPathState(run_);
    if (tapforge::checkTapPath(previous, state)) {
      addTapTransition(state);
    } else if (first) {
      tapforge::checkTapState(tapforge::StateUse::stable, "invalid stable state", run_.lexer);
      doStableState(previous, state);
    } else {
      run_.report.fatal(
          concat("Invalid pathstate from state ", tapforge::getTapStateName(previous)));
    }
    previous = state;
    first = false;
  }
  if (first) return;
  tapforge::checkFinalState(previous, run_);
  run_.tap.iCurState = previous;
}

// Looks at the next keyword and leaves it for the statement loop.
bool MoveWriter::nextIsRunTest() {
  if (!run_.lexer.lexKeyword()) return false;
  run_.lexer.unlex();
  return run_.lexer.is("runtest");
}

void MoveWriter::doEndState(ScanRegister which) {
  const TapState state = tapforge::readEndState(which, run_);
  const bool beforeRunTest = nextIsRunTest();
  if (beforeRunTest && !vars_.giUseKwait) {
    g_iDelayedEndxR_ = true;
    g_iStoredEndMode_ = which;
    g_iStoredEndTap_ = state;
    return;
  }
  writeEndState(which, state);
}

void MoveWriter::writeEndState(ScanRegister which, TapState state) {
  scans_.writePending(RunCount::reset);
  if (!vars_.iKsvfExt) return;
  const Command code = which == ScanRegister::data ? Command::KENDDR : Command::KENDIR;
  const long operand = state == idle ? 0 : 1;
  bytes_.listNumber(code, operand, 2, "\n");
  bytes_.commandWith(code, operand, 2);
}

bool MoveWriter::writeDelayedEndState() {
  if (!g_iDelayedEndxR_) return false;
  writeEndState(g_iStoredEndMode_, g_iStoredEndTap_);
  g_iDelayedEndxR_ = false;
  return true;
}

float MoveWriter::countOfTime(const tapforge::Number& time, std::string_view unit) {
  const long frequency = vars_.lGlobTckFreq;
  if (frequency == -1) {
    run_.report.warning("Use tck_freq option to convert time delay into equivalent TCK count");
    run_.report.fatal("Delay must be in terms of TCK count", Where::nowhere);
  }
  run_.report.warning(
      concat("Converting delay to equivalent TCK count using tck_freq = ", frequency, " Hz"),
      Where::nowhere);
  const bool whole = time.kind == tapforge::Number::Kind::integer;
  const long clocks = whole ? tapforge::saturatedProduct(time.integer, frequency)
                            : tapforge::truncated(time.real * static_cast<float>(frequency));
  run_.report.warning(concat("=> ",
                             whole ? std::to_string(time.integer) : std::to_string(time.real), " ",
                             unit, " to ", clocks, " TCKs"));
  return static_cast<float>(clocks);
}

long MoveWriter::readRunCount() {
  tapforge::readRunTest(run_, *this);
  return tapforge::truncated(run_.tap.fRunCount);
}

void MoveWriter::doRunTest() {
  if (vars_.giUseKwait) scans_.writePending(RunCount::keep);
  long count = readRunCount();
  // A run of RUNTESTs is one wait.
  while (!vars_.giUseKwait && nextIsRunTest()) {
    run_.lexer.lex();
    count = tapforge::saturatedSum(count, readRunCount());
  }
  count = std::max(count, vars_.lRunMin);
  if (vars_.giUseKwait) {
    const long waitState = static_cast<long>(run_.tap.iRunState);
    const long endState = static_cast<long>(run_.tap.iRunEndState);
    bytes_.listNumber(Command::KWAIT, waitState, 2, " 0x");
    bytes_.list(concat(
        tapforge::paddedHex(static_cast<std::uint32_t>(endState), 2, tapforge::HexCase::upper),
        " 0x", tapforge::paddedHex(static_cast<std::uint32_t>(count), 8, tapforge::HexCase::upper),
        "\n"));
    bytes_.commandWith(Command::KWAIT, waitState, 2);
    bytes_.binWrite(endState, 2);
    bytes_.operand(Command::KWAIT, count, 8);
    return;
  }
  if (scans_.writeRunCount(count) && vars_.iMultipleRunTest) scans_.writeEmptyScan();
  scans_.writePending(RunCount::keep);
}

}  // namespace progmode_svf2ksvf

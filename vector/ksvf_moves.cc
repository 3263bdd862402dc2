#include "vector/ksvf_moves.h"

#include <span>

namespace tapforge::progmode_svf2ksvf {
namespace {

using enum TapState;

// The ways between the stable states, without their start. A way from a pause
// state to itself goes all the way round.
constexpr TapState kToReset[] = {drselect, irselect, reset};
constexpr TapState kToDrPause[] = {drselect, drcapture, drexit1, drpause};
constexpr TapState kToIrPause[] = {drselect, irselect, ircapture, irexit1, irpause};
constexpr TapState kOutOfDrPause[] = {drexit2, drupdate};
constexpr TapState kOutOfIrPause[] = {irexit2, irupdate};
constexpr TapState kToIdle[] = {idle};

std::int64_t numberOf(TapState state) { return static_cast<std::int64_t>(state); }

}  // namespace

void KsvfMoves::addTapTransition(TapState state) {
  if (vars_.iV2Compatibility) return;
  // The minimum set that a player of version 4 knows: reset and idle.
  if (vars_.iOptMinKstateUsage && state != reset && state != idle) return;
  commands_.write(Command::KSTATE, {numberOf(state)});
}

void KsvfMoves::doStableState(TapState from, TapState to) {
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

void KsvfMoves::endState(ScanRegister which, TapState state) {
  if (!vars_.iKsvfExt) return;
  const Command command = which == ScanRegister::data ? Command::KENDDR : Command::KENDIR;
  commands_.write(command, {state == idle ? 0 : 1});
}

void KsvfMoves::wait(TapState waitState, TapState endState, std::int64_t count) {
  commands_.write(Command::KWAIT, {numberOf(waitState), numberOf(endState), count});
}

}  // namespace tapforge::progmode_svf2ksvf

#ifndef TAPFORGE_REPLAY_TAP_H_
#define TAPFORGE_REPLAY_TAP_H_

#include <cstdint>
#include <optional>
#include <string_view>

namespace tapforge_replay {

/// The sixteen states of the TAP controller.
// clang-format off
enum class TapState : std::uint8_t {
  kReset, kIdle, kDrSelect, kDrCapture, kDrShift, kDrExit1, kDrPause, kDrExit2, kDrUpdate,
  kIrSelect, kIrCapture, kIrShift, kIrExit1, kIrPause, kIrExit2, kIrUpdate
};
// clang-format on

/// Upper case, as SVF spells it.
std::string_view nameOf(TapState state);

/// The state of a name, in capitals or in small letters.
std::optional<TapState> findState(std::string_view name);

/// Reset, idle and the two pause states, in which the TAP can wait.
bool isStable(TapState state);

/// The state after one TCK with this level of TMS.
TapState nextState(TapState from, bool tms);

/// Whether one TCK leads from a state to another, or keeps it where it is.
bool isOneClock(TapState from, TapState to);

/// The first state on the shortest way to another one.
TapState stateTowards(TapState from, TapState to);

}  // namespace tapforge_replay

#endif  // TAPFORGE_REPLAY_TAP_H_

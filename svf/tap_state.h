#ifndef TAPFORGE_SVF_TAP_STATE_H
#define TAPFORGE_SVF_TAP_STATE_H

#include <array>
#include <optional>
#include <string_view>

#include "svf/tokens.h"

namespace tapforge {

/// The sixteen states of the IEEE 1149.1 TAP controller. The values are the
/// state numbers of the KSVF format.
enum class TapState {
  reset,
  idle,
  drselect,
  drcapture,
  drshift,
  drexit1,
  drpause,
  drexit2,
  drupdate,
  irselect,
  ircapture,
  irshift,
  irexit1,
  irpause,
  irexit2,
  irupdate,
  unknown
};

/// The lower-case name; empty for `unknown`.
std::string_view getTapStateName(TapState state);

/// The state with this lower-case name, or `unknown`.
TapState tapStateNamed(std::string_view name);

/// Whether the TAP can stay there while the clock runs: reset, idle, drpause
/// and irpause.
bool isStable(TapState state);

/// Where a state name stands in a statement decides which names are accepted.
enum class StateUse { stable, path };

/// The state that the current token names; fatal "[name]: message" when the
/// use does not accept it.
TapState checkTapState(StateUse use, std::string_view message, Lexer& lexer);

/// The TMS value (0 or 1) of the one clock that leads from `from` to `to`;
/// nothing when one clock does not.
std::optional<int> checkTapPath(TapState from, TapState to);

}  // namespace tapforge

#endif  // TAPFORGE_SVF_TAP_STATE_H

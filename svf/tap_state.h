#ifndef TAPFORGE_SVF_TAP_STATE_H
#define TAPFORGE_SVF_TAP_STATE_H

#include <optional>
#include <string_view>

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

/// The register that a scan goes through.
enum class ScanRegister { instruction, data };

/// The lower-case name of a state, as SVF has it; empty for `unknown`.
std::string_view getTapStateName(TapState state);

/// The state with this lower-case name, or `unknown`. An alias would be one more
/// row of the table of names.
TapState tapStateNamed(std::string_view name);

/// Whether the TAP can stay there while the clock runs: reset, idle, drpause
/// and irpause.
bool isStable(TapState state);

/// The TMS value (0 or 1) of the one clock that leads from `from` to `to`;
/// nothing when one clock does not. Neither may be `unknown`.
std::optional<int> checkTapPath(TapState from, TapState to);

}  // namespace tapforge

#endif  // TAPFORGE_SVF_TAP_STATE_H

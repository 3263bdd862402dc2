#include "svf/tap_state.h"

#include <array>
#include <cassert>
#include <cstddef>

#include "svf/word.h"

namespace tapforge {
namespace {

using enum TapState;

struct StateRow {
  TapState state;
  std::string_view name;
  // IEEE 1149.1: the state that follows with TMS 0 and with TMS 1.
  TapState tms0;
  TapState tms1;
};

// The first sixteen rows by state number. Rows after them would be other names.
constexpr std::array kStates = std::to_array<StateRow>({
    {reset, "reset", idle, reset},
    {idle, "idle", idle, drselect},
    {drselect, "drselect", drcapture, irselect},
    {drcapture, "drcapture", drshift, drexit1},
    {drshift, "drshift", drshift, drexit1},
    {drexit1, "drexit1", drpause, drupdate},
    {drpause, "drpause", drpause, drexit2},
    {drexit2, "drexit2", drshift, drupdate},
    {drupdate, "drupdate", idle, drselect},
    {irselect, "irselect", ircapture, reset},
    {ircapture, "ircapture", irshift, irexit1},
    {irshift, "irshift", irshift, irexit1},
    {irexit1, "irexit1", irpause, irupdate},
    {irpause, "irpause", irpause, irexit2},
    {irexit2, "irexit2", irshift, irupdate},
    {irupdate, "irupdate", idle, drselect},
});

static_assert(rowsByNumber(kStates, &StateRow::state, static_cast<std::size_t>(unknown)));

const StateRow& rowOf(TapState state) {
  assert(state != unknown);
  return kStates[static_cast<std::size_t>(state)];
}

}  // namespace

std::string_view getTapStateName(TapState state) {
  return state == unknown ? "" : rowOf(state).name;
}

TapState tapStateNamed(std::string_view name) {
  for (const StateRow& row : kStates) {
    if (row.name == name) return row.state;
  }
  return unknown;
}

bool isStable(TapState state) {
  return state == reset || state == idle || state == drpause || state == irpause;
}

std::optional<int> checkTapPath(TapState from, TapState to) {
  if (to == rowOf(from).tms0) return 0;
  if (to == rowOf(from).tms1) return 1;
  return std::nullopt;
}

}  // namespace tapforge

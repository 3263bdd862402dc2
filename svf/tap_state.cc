#include "svf/tap_state.h"

#include <cstddef>

#include "shell/io/text.h"

namespace tapforge {
namespace {

constexpr std::array<std::string_view, 16> kNames = {
    "reset",    "idle",     "drselect",  "drcapture", "drshift", "drexit1", "drpause", "drexit2",
    "drupdate", "irselect", "ircapture", "irshift",   "irexit1", "irpause", "irexit2", "irupdate"};

// IEEE 1149.1: the state that follows with TMS 0 and with TMS 1.
struct Next {
  TapState tms0;
  TapState tms1;
};

constexpr std::array<Next, 16> kNext = {{
    {TapState::idle, TapState::reset},          // reset
    {TapState::idle, TapState::drselect},       // idle
    {TapState::drcapture, TapState::irselect},  // drselect
    {TapState::drshift, TapState::drexit1},     // drcapture
    {TapState::drshift, TapState::drexit1},     // drshift
    {TapState::drpause, TapState::drupdate},    // drexit1
    {TapState::drpause, TapState::drexit2},     // drpause
    {TapState::drshift, TapState::drupdate},    // drexit2
    {TapState::idle, TapState::drselect},       // drupdate
    {TapState::ircapture, TapState::reset},     // irselect
    {TapState::irshift, TapState::irexit1},     // ircapture
    {TapState::irshift, TapState::irexit1},     // irshift
    {TapState::irpause, TapState::irupdate},    // irexit1
    {TapState::irpause, TapState::irexit2},     // irpause
    {TapState::irshift, TapState::irupdate},    // irexit2
    {TapState::idle, TapState::drselect},       // irupdate
}};

}  // namespace

std::string_view getTapStateName(TapState state) {
  return state == TapState::unknown ? "" : kNames[static_cast<std::size_t>(state)];
}

TapState tapStateNamed(std::string_view name) {
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    if (kNames[i] == name) return static_cast<TapState>(i);
  }
  return TapState::unknown;
}

bool isStable(TapState state) {
  return state == TapState::reset || state == TapState::idle || state == TapState::drpause ||
         state == TapState::irpause;
}

TapState checkTapState(StateUse use, std::string_view message, Lexer& lexer) {
  const TapState state = tapStateNamed(lexer.token());
  if (state == TapState::unknown || (use == StateUse::stable && !isStable(state))) {
    lexer.report().fatal(concat("[", lexer.token(), "]: ", message));
  }
  return state;
}

std::optional<int> checkTapPath(TapState from, TapState to) {
  const Next& next = kNext[static_cast<std::size_t>(from)];
  if (to == next.tms0) return 0;
  if (to == next.tms1) return 1;
  return std::nullopt;
}

}  // namespace tapforge

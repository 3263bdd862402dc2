#include "replay/tap.h"

#include <array>
#include <cstddef>

namespace tapforge_replay {
namespace {

using enum TapState;

struct StateRule {
  std::string_view name;
  std::string_view lowerCase;
  TapState onZero;  // TMS 0
  TapState onOne;
  unsigned toOne;  // bit n: TMS of the first TCK of the shortest way to state n
};

constexpr std::size_t kStateCount = 16;

// clang-format off
constexpr std::array<StateRule, kStateCount> kStates = {{
    {"RESET", "reset", kIdle, kReset, 0x0001},
    {"IDLE", "idle", kIdle, kDrSelect, 0xfffd},
    {"DRSELECT", "drselect", kDrCapture, kIrSelect, 0xfe03},
    {"DRCAPTURE", "drcapture", kDrShift, kDrExit1, 0xffe7},
    {"DRSHIFT", "drshift", kDrShift, kDrExit1, 0xffef},
    {"DREXIT1", "drexit1", kDrPause, kDrUpdate, 0xff0f},
    {"DRPAUSE", "drpause", kDrPause, kDrExit2, 0xffbf},
    {"DREXIT2", "drexit2", kDrShift, kDrUpdate, 0xff0f},
    {"DRUPDATE", "drupdate", kIdle, kDrSelect, 0xfefd},
    {"IRSELECT", "irselect", kIrCapture, kReset, 0x01ff},
    {"IRCAPTURE", "ircapture", kIrShift, kIrExit1, 0xf3ff},
    {"IRSHIFT", "irshift", kIrShift, kIrExit1, 0xf7ff},
    {"IREXIT1", "irexit1", kIrPause, kIrUpdate, 0x87ff},
    {"IRPAUSE", "irpause", kIrPause, kIrExit2, 0xdfff},
    {"IREXIT2", "irexit2", kIrShift, kIrUpdate, 0x87ff},
    {"IRUPDATE", "irupdate", kIdle, kDrSelect, 0x7ffd},
}};
// clang-format on

constexpr std::size_t indexOf(TapState state) { return static_cast<std::size_t>(state); }

}  // namespace

std::string_view nameOf(TapState state) { return kStates[indexOf(state)].name; }

std::optional<TapState> findState(std::string_view name) {
  for (std::size_t i = 0; i < kStateCount; ++i) {
    if (kStates[i].lowerCase == name) return static_cast<TapState>(i);
  }
  return std::nullopt;
}

bool isStable(TapState state) {
  return state == kReset || state == kIdle || state == kDrPause || state == kIrPause;
}

TapState nextState(TapState from, bool tms) {
  const StateRule& rule = kStates[indexOf(from)];
  return tms ? rule.onOne : rule.onZero;
}

bool isOneClock(TapState from, TapState to) {
  return nextState(from, false) == to || nextState(from, true) == to;
}

TapState stateTowards(TapState from, TapState to) {
  return nextState(from, (kStates[indexOf(from)].toOne >> indexOf(to) & 1) != 0);
}

}  // namespace tapforge_replay

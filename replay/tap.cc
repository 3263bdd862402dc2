#include "replay/tap.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>

namespace tapforge_replay {
namespace {

using enum TapState;

struct StateRule {
  std::string_view name;
  TapState onZero;  // TMS 0
  TapState onOne;
  unsigned toOne;  // bit n: TMS of the first TCK of the shortest way to state n
};

constexpr std::size_t kStateCount = 16;

// clang-format off
constexpr std::array<StateRule, kStateCount> kStates = {{
    {"RESET", kIdle, kReset, 0x0001},
    {"IDLE", kIdle, kDrSelect, 0xfffd},
    {"DRSELECT", kDrCapture, kIrSelect, 0xfe03},
    {"DRCAPTURE", kDrShift, kDrExit1, 0xffe7},
    {"DRSHIFT", kDrShift, kDrExit1, 0xffef},
    {"DREXIT1", kDrPause, kDrUpdate, 0xff0f},
    {"DRPAUSE", kDrPause, kDrExit2, 0xffbf},
    {"DREXIT2", kDrShift, kDrUpdate, 0xff0f},
    {"DRUPDATE", kIdle, kDrSelect, 0xfefd},
    {"IRSELECT", kIrCapture, kReset, 0x01ff},
    {"IRCAPTURE", kIrShift, kIrExit1, 0xf3ff},
    {"IRSHIFT", kIrShift, kIrExit1, 0xf7ff},
    {"IREXIT1", kIrPause, kIrUpdate, 0x87ff},
    {"IRPAUSE", kIrPause, kIrExit2, 0xdfff},
    {"IREXIT2", kIrShift, kIrUpdate, 0x87ff},
    {"IRUPDATE", kIdle, kDrSelect, 0x7ffd},
}};
// clang-format on

constexpr std::size_t indexOf(TapState state) { return static_cast<std::size_t>(state); }

}  // namespace

std::string_view nameOf(TapState state) { return kStates[indexOf(state)].name; }

std::optional<TapState> findState(std::string_view name) {
  const auto isSame = [](char a, char b) {
    return std::toupper(static_cast<unsigned char>(a)) == b;
  };
  for (std::size_t i = 0; i < kStateCount; ++i) {
    const std::string_view own = kStates[i].name;
    if (std::equal(name.begin(), name.end(), own.begin(), own.end(), isSame)) {
      return static_cast<TapState>(i);
    }
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

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
};

constexpr std::size_t kStateCount = 16;

// clang-format off
constexpr std::array<StateRule, kStateCount> kStates = {{
    {"RESET", kIdle, kReset},
    {"IDLE", kIdle, kDrSelect},
    {"DRSELECT", kDrCapture, kIrSelect},
    {"DRCAPTURE", kDrShift, kDrExit1},
    {"DRSHIFT", kDrShift, kDrExit1},
    {"DREXIT1", kDrPause, kDrUpdate},
    {"DRPAUSE", kDrPause, kDrExit2},
    {"DREXIT2", kDrShift, kDrUpdate},
    {"DRUPDATE", kIdle, kDrSelect},
    {"IRSELECT", kIrCapture, kReset},
    {"IRCAPTURE", kIrShift, kIrExit1},
    {"IRSHIFT", kIrShift, kIrExit1},
    {"IREXIT1", kIrPause, kIrUpdate},
    {"IRPAUSE", kIrPause, kIrExit2},
    {"IREXIT2", kIrShift, kIrUpdate},
    {"IRUPDATE", kIdle, kDrSelect},
}};
// clang-format on

constexpr std::size_t indexOf(TapState state) { return static_cast<std::size_t>(state); }

struct Way {
  std::array<TapState, 10> states{};  // none is longer than that
  std::size_t length = 0;
};
using Ways = std::array<Way, kStateCount>;

// The shortest ways from one state to all others: a way grows from the shorter one
// to the state before, and each round finds those that are one TCK longer.
constexpr Ways waysFrom(std::size_t from) {
  Ways ways{};
  for (std::size_t length = 0; length < 10; ++length) {
    for (std::size_t at = 0; at < kStateCount; ++at) {
      if (ways[at].length != length || (length == 0 && at != from)) continue;
      for (const TapState next : {kStates[at].onZero, kStates[at].onOne}) {
        Way& way = ways[indexOf(next)];
        if (way.length != 0 || indexOf(next) == from) continue;
        way = ways[at];
        way.states[way.length++] = next;
      }
    }
  }
  return ways;
}

constexpr std::array<Ways, kStateCount> allWays() {
  std::array<Ways, kStateCount> all{};
  for (std::size_t from = 0; from < kStateCount; ++from) all[from] = waysFrom(from);
  return all;
}

constexpr std::array<Ways, kStateCount> kWays = allWays();

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

std::span<const TapState> wayBetween(TapState from, TapState to) {
  const Way& way = kWays[indexOf(from)][indexOf(to)];
  return {way.states.data(), way.length};
}

}  // namespace tapforge_replay

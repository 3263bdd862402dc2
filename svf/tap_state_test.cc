#include "svf/tap_state.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tapforge {
namespace {

constexpr int kStates = static_cast<int>(TapState::unknown);

// The one state that a clock with this TMS leads to.
TapState clocked(TapState from, int tms) {
  TapState to = TapState::unknown;
  for (int i = 0; i < kStates; ++i) {
    const auto state = static_cast<TapState>(i);
    if (checkTapPath(from, state) != tms) continue;
    EXPECT_EQ(to, TapState::unknown) << getTapStateName(from) << " has two ways out";
    to = state;
  }
  return to;
}

// The states that a row of TMS values leads through.
std::string walk(std::string_view from, std::string_view tms) {
  TapState state = tapStateNamed(from);
  std::string names;
  for (const char bit : tms) {
    state = clocked(state, bit - '0');
    names += std::string(names.empty() ? "" : " ") + std::string(getTapStateName(state));
  }
  return names;
}

TEST(TapState, FollowsTms) {
  EXPECT_EQ(walk("reset", "1001"), "reset idle idle drselect");
  EXPECT_EQ(walk("drselect", "11"), "irselect reset");
  for (const std::string reg : {"dr", "ir"}) {
    EXPECT_EQ(walk(reg + "select", "00"), reg + "capture " + reg + "shift");
    EXPECT_EQ(walk(reg + "capture", "110"), reg + "exit1 " + reg + "update idle");
    EXPECT_EQ(walk(reg + "shift", "0100"),
              reg + "shift " + reg + "exit1 " + reg + "pause " + reg + "pause");
    EXPECT_EQ(walk(reg + "pause", "101"), reg + "exit2 " + reg + "shift " + reg + "exit1");
    EXPECT_EQ(walk(reg + "pause", "111"), reg + "exit2 " + reg + "update drselect");
  }
}

TEST(TapState, HasNamesAndFiveOnesResetIt) {
  for (int i = 0; i < kStates; ++i) {
    const std::string name(getTapStateName(static_cast<TapState>(i)));
    EXPECT_EQ(tapStateNamed(name), static_cast<TapState>(i));
    EXPECT_TRUE(walk(name, "11111").ends_with("reset")) << name;
    const bool stable = name == "reset" || name == "idle" || name.ends_with("pause");
    EXPECT_EQ(isStable(static_cast<TapState>(i)), stable) << name;
  }
  EXPECT_EQ(tapStateNamed("IDLE"), TapState::unknown);
  EXPECT_EQ(getTapStateName(TapState::unknown), "");
  EXPECT_FALSE(isStable(TapState::unknown));
}

}  // namespace
}  // namespace tapforge

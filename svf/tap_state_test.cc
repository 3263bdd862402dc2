#include "svf/tap_state.h"

#include <gtest/gtest.h>

#include <string>

namespace tapforge {
namespace {

constexpr int kStates = static_cast<int>(TapState::unknown);

// The states that a row of TMS values leads through.
std::string walk(std::string_view from, std::string_view tms) {
  TapState state = tapStateNamed(from);
  std::string names;
  for (const char bit : tms) {
    TapState next = TapState::unknown;
    for (int i = 0; i < kStates; ++i) {
      const auto to = static_cast<TapState>(i);
      if (checkTapPath(state, to) != bit - '0') continue;
      EXPECT_EQ(next, TapState::unknown) << "two ways out of " << getTapStateName(state);
      next = to;
    }
    state = next;
    names += (names.empty() ? "" : " ") + std::string(getTapStateName(state));
  }
  return names;
}

TEST(TapState, FollowsTms) {
  EXPECT_EQ(walk("reset", "1001"), "reset idle idle drselect");
  EXPECT_EQ(walk("drselect", "11"), "irselect reset");
  for (const std::string r : {"dr", "ir"}) {
    EXPECT_EQ(walk(r + "select", "00"), r + "capture " + r + "shift");
    EXPECT_EQ(walk(r + "capture", "110"), r + "exit1 " + r + "update idle");
    EXPECT_EQ(walk(r + "shift", "0100"), r + "shift " + r + "exit1 " + r + "pause " + r + "pause");
    EXPECT_EQ(walk(r + "pause", "101"), r + "exit2 " + r + "shift " + r + "exit1");
    EXPECT_EQ(walk(r + "pause", "111"), r + "exit2 " + r + "update drselect");
  }
}

TEST(TapState, HasANameAndIsResetByFiveOnes) {
  for (int i = 0; i < kStates; ++i) {
    const auto state = static_cast<TapState>(i);
    const std::string name(getTapStateName(state));
    EXPECT_EQ(tapStateNamed(name), state);
    EXPECT_TRUE(walk(name, "11111").ends_with("reset")) << name;
    EXPECT_EQ(isStable(state), name == "reset" || name == "idle" || name.ends_with("pause"));
  }
  EXPECT_EQ(tapStateNamed("IDLE"), TapState::unknown);
  EXPECT_EQ(getTapStateName(TapState::unknown), "");
}

}  // namespace
}  // namespace tapforge

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "tests/support/in_memory.h"

namespace tapforge::progmode_svf2ksvf {
namespace {

using testing::toKsvf;

// The commands of a listing without their operands, but for run counts and
// sizes: enough to see which goes where.
std::string commands(std::string_view svf) {
  const std::string listing = toKsvf(svf).listing;
  std::string text;
  for (std::size_t at = 0; at < listing.size();) {
    const std::size_t end = listing.find('\n', at);
    const std::string line = listing.substr(at, end - at);
    at = end + 1;
    const std::string name = line.substr(0, line.find(' '));
    if (name != "KRUNTEST" && name.substr(0, 2) != "KS") continue;
    if (name == "KSTATE") continue;
    if (!text.empty()) text += ' ';
    text += name.substr(1);
    if (name == "KRUNTEST" || name == "KSDRSIZE") {
      text += std::to_string(std::stol(line.substr(line.rfind(' ')), nullptr, 16));
    }
  }
  return text;
}

const std::string kSir = "SIR 8 TDI (01);";
const std::string kSdr = "SDR 8 TDI (01);";
const std::string kWait = "RUNTEST 7 TCK;";

TEST(KsvfScans, RunCountsOfStatementSequences) {
  const std::pair<std::string, std::string> cases[] = {
      // The first scan without a RUNTEST of its own.
      {kSir, "RUNTEST0 SIR"},
      {kSir + kWait + kSir, "RUNTEST7 SIR RUNTEST0 SIR"},
      // After an SDR the count also stands for the next one.
      {kSdr + kWait + kSdr + kSdr, "RUNTEST7 SDRSIZE8 SDRTDO SDRTDO RUNTEST0 SDRTDO"},
      {kSdr + kWait + kSir, "RUNTEST7 SDRSIZE8 SDRTDO RUNTEST0 SIR"},
      // The pending scan of the other kind waits until the new one is read.
      {kSir + kSdr, "RUNTEST0 SIR SDRSIZE8 SDRTDO"},
      {kSir + kSdr + kWait, "RUNTEST0 SIR RUNTEST7 SDRSIZE8 SDRTDO"},
      {"RUNTEST 100 TCK; RUNTEST 50 TCK;" + kSdr + kWait, "RUNTEST150 RUNTEST7 SDRSIZE8 SDRTDO"},
      {kWait + kSdr + kWait, "RUNTEST7 SDRSIZE8 SDRTDO"},
      {"RUNTEST 0 TCK;" + kSir, "RUNTEST0 SIR"},
      {kWait + "HIR 2 TDI (0);" + kSir, "RUNTEST7 RUNTEST0 SIR"},
      {kWait + kSdr, "RUNTEST7 SDRSIZE8 SDRTDO"},
  };
  for (const auto& [svf, expected] : cases) EXPECT_EQ(commands(svf), expected) << svf;
  // Other statements end what scans and waits have to do with each other.
  const std::string map = "PIOMAP (IN A);";
  for (const std::string each :
       {"FREQUENCY;", "TRST OFF;", "PIOMAP ();", "PIO (H);", "STATE IDLE;"}) {
    EXPECT_EQ(commands(map + kSir + each + kWait), "RUNTEST0 SIR RUNTEST7") << each;
    EXPECT_EQ(commands(map + kWait + each + kSir), "RUNTEST7 RUNTEST0 SIR") << each;
    EXPECT_EQ(commands(map + kWait + kSdr + each + kSdr),
              "RUNTEST7 SDRSIZE8 SDRTDO RUNTEST0 SDRTDO")
        << each;
  }
}

}  // namespace
}  // namespace tapforge::progmode_svf2ksvf

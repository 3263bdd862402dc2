#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "shell/io/text.h"
#include "tests/support/in_memory.h"

namespace progmode_svf2ksvf {
namespace {

using tapforge::testing::toKsvf;

// The commands of a listing without their operands, but for run counts, sizes
// and states: enough to see which goes where.
std::string commands(std::string_view svf, KsvfVars vars = {.lFpgaRecSize = 128}) {
  std::string listing = toKsvf(svf, vars).listing;
  std::string text;
  for (std::size_t at = 0; at < listing.size();) {
    std::size_t end = listing.find('\n', at);
    const std::string line = listing.substr(at, end - at);
    at = end + 1;
    const std::string name = line.substr(0, line.find(' '));
    if (name == "KREPEAT" || name == "KCOMPLETE" || name == "KTDOMASK") continue;
    if (!text.empty()) text += ' ';
    text += name.substr(1);
    if (name == "KRUNTEST" || name == "KSDRSIZE" || name == "KSTATE") {
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
      {kWait + "TRST OFF;" + kSir, "RUNTEST7 RUNTEST0 SIR"},
      {kWait + "HIR 2 TDI (0);" + kSir, "RUNTEST7 RUNTEST0 SIR"},
      {kWait + kSdr, "RUNTEST7 SDRSIZE8 SDRTDO"},
      {kWait + kSdr + "TRST OFF;" + kSdr, "RUNTEST7 SDRSIZE8 SDRTDO RUNTEST0 SDRTDO"},
  };
  for (const auto& [svf, expected] : cases) EXPECT_EQ(commands(svf), expected) << svf;
}

TEST(KsvfScans, CutsLongScansIntoRecords) {
  const auto records = [](long bits) {
    return commands(tapforge::concat("SDR ", bits, " TDI (0);"),
                    {.iFpgaFormat = true, .lFpgaRecSize = 128});
  };
  EXPECT_EQ(records(128), "SDRSIZE128 RUNTEST0 SDRTDO");
  EXPECT_EQ(records(129), "SDRSIZE128 RUNTEST0 SDRB SDRSIZE1 SDRE");
  EXPECT_EQ(records(256), "SDRSIZE128 RUNTEST0 SDRB SDRE");
  EXPECT_EQ(records(300), "SDRSIZE128 RUNTEST0 SDRB SDRC SDRSIZE44 SDRE");
}

TEST(KsvfScans, WritesAMaskOnlyWhenItsLeadingDigitsDiffer) {
  const auto masks = [](std::string_view svf) {
    const std::string listing = toKsvf(svf).listing;
    std::string text;
    for (std::size_t at = 0; (at = listing.find("KTDOMASK 0x", at)) != std::string::npos;) {
      at += 11;
      text += listing.substr(at, listing.find('\n', at) - at) + " ";
    }
    return text;
  };
  EXPECT_EQ(masks("SDR 8 TDI(0) TDO(1) MASK(f0); SDR 8 TDO(2);"), "f0 ");
  EXPECT_EQ(masks("SDR 8 TDI(0) TDO(1) MASK(f0); SDR 8 TDI(0);"), "f0 00 ");
  // A shorter mask is compared over its own digits, a longer one differs.
  EXPECT_EQ(masks("SDR 8 TDI(0) TDO(1) MASK(fa); SDR 4 TDI(0) TDO(1) MASK(f);"), "fa ");
  EXPECT_EQ(masks("SDR 4 TDI(0) TDO(1) MASK(f); SDR 8 TDI(0) TDO(1) MASK(fa);"), "0f fa ");
  EXPECT_EQ(masks("SDR 8 TDI(0) TDO(1) MASK(fa); SDR 4 TDI(0) TDO(1) MASK(a);"), "fa 0a ");
}

}  // namespace
}  // namespace progmode_svf2ksvf

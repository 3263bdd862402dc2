#include "scan/scan_statement.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "shell/io/text.h"
#include "tests/support/fakes.h"
#include "tests/support/in_memory.h"

namespace tapforge::testing {
namespace {

// The values that an SDR puts in force, after what is said about them.
std::string scan(const std::string& statement) {
  SyntaxRules rules = scriptRules();
  rules.positionText = [](const SourcePlace& place) { return concat(" [", place.lastItem, "]"); };
  Source source(statement, rules);
  CTapObj tap;
  EXPECT_TRUE(readTapData(Keyword::sdr, tap, source.channel));
  std::string text = source.report.text + "\n";
  for (const ScanValue value : kScanValues) {
    const CTapField* const field = tap.pTapData[value];
    text += '/';
    if (field == nullptr) continue;
    for (std::int64_t i = field->lNumChars(); i-- > 0;) {
      text += "0123456789abcdef"[field->getTapDataChar(i)];
    }
  }
  return text;
}

TEST(ScanStatement, KeepsTheLastDigits) {
  const std::string digits = "20b000001002030450600";
  for (const std::size_t size : {std::size_t{2}, kBlockSizes.back()}) {
    const WithBlockSize blocks(size);
    for (std::size_t bits = 1; bits <= 72; ++bits) {
      for (std::size_t count = 0; count <= digits.size(); ++count) {
        const std::size_t room = (bits + 3) / 4;
        std::string expected;
        for (std::size_t i = room; i < count; ++i) {
          if (digits[i - room] != '0') {
            expected += concat("\nWarning: Ignoring excess MSB chars in field [", digits[i], "]");
          }
        }
        std::string kept = std::string(room - std::min(room, count), '0') +
                           digits.substr(count - std::min(room, count), std::min(room, count));
        const int top = kept[0] == 'b' ? 11 : kept[0] - '0';
        if (bits % 4 != 0 && top >> bits % 4 != 0) {
          expected +=
              concat("\nWarning: 1's in ", 4 - bits % 4, " MSB bits of leading hex char (",
                     xToUpper(kept.substr(0, 1)), ") will be ignored [", digits[count - 1], "]");
        }
        expected += "\n/" + kept + "///";
        // A blank in front takes a value off the short way.
        for (const char* const blank : {"", " "}) {
          EXPECT_EQ(scan(concat(bits, " TDI(", blank, digits.substr(0, count), ");")), expected);
        }
      }
    }
  }
}

TEST(ScanStatement, DropsTheTdoThatAZeroMaskLeavesNothingOf) {
  const std::string zeros(16, '0');
  EXPECT_EQ(scan("65 TDI(0)TDO(0)MASK(1" + zeros + ");"),
            "\n/0" + zeros + "/0" + zeros + "/1" + zeros + "/");
  EXPECT_EQ(scan("65 TDI(0)TDO(0)MASK();"), "\n/0" + zeros + "//0" + zeros + "/");
  EXPECT_EQ(scan("4 TDI(0) MASK(8)TDO(0);"), "\n/0/0/8/");
  EXPECT_EQ(scan("4 TDI(0) MASK(0) TDO(0);"), "\n/0//0/");
  EXPECT_EQ(scan("3 MASK(8)TDO(0) SMASK\n( 1\t2 )TDI(5);"),
            "\nWarning: 1's in 1 MSB bits of leading hex char (8) will be ignored [8]"
            "\nWarning: Ignoring excess MSB chars in field [2]\n/5//8/2");
}

TEST(ScanStatement, ShowsItsProgress) {
  const auto svf = [](std::size_t digits) {
    return concat("SDR ", 4 * digits, " TDI (", std::string(digits, '7'), ");");
  };
  const std::string wipe = "\r" + std::string(58, ' ');
  const std::string blank = "\r" + std::string(79, ' ') + "\r";
  for (const std::size_t size : {kBlockSizes.front(), kBlockSizes.back()}) {
    const WithBlockSize blocks(size);
    EXPECT_EQ(toScript(svf(200000)).status, "");
    EXPECT_EQ(toScript(svf(200001)).status, "\r*** Writing hex char #  200000" + wipe);
    EXPECT_EQ(toScript(svf(400002)).status,
              "\r*** Reading hex char #  400000\r*** Reading hex char #  200000" + wipe +
                  "\r*** Writing hex char #  200000\r*** Writing hex char #  400000" + wipe);
    EXPECT_EQ(toKsvf(svf(200001)).status, "");
    EXPECT_EQ(toKsvf(svf(200002)).status, blank + "*** Reading hex char #  200000" + blank);
  }
  std::string tcl;
  for (const char* const kind : {"", "", "mask "}) {
    for (const int digit : {20000, 10000, 0})
      tcl += concat("\rProcess ", kind, "data char ", digit);
  }
  EXPECT_EQ(toScript("SDR 80004 TDI (1) TDO (2) MASK (3);",
                     {.iSvfSyntaxCheck = true, .iGlobOutFormat = true})
                .status,
            tcl);
}

}  // namespace
}  // namespace tapforge::testing

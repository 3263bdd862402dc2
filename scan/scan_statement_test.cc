#include "scan/scan_statement.h"

#include <gtest/gtest.h>

#include <string>

#include "io/text.h"
#include "tests/support/in_memory.h"

namespace tapforge::testing {
namespace {

// What is said about SDRs, and the digits of TDI, TDO, MASK and SMASK that they leave in force.
std::string scan(const std::string& statements) {
  SyntaxRules rules = progmode_svf2tapbus::kSyntaxRules;
  rules.positionText = [](const SourcePlace& place) { return concat(" [", place.sLastItem, "]"); };
  Source source(statements, rules);
  CTapObj tap;
  while (source.channel.lexKeyword()) {
    source.channel.unlex();
    EXPECT_TRUE(readTapData(Keyword::sdr, tap, source.channel));
  }
  std::string text = source.report.text + "\n";
  for (const auto& [value, word, fill] : kScanValues) {
    const CTapField* const field = tap.pTapData[value];
    for (std::int64_t i = field == nullptr ? 0 : field->lNumChars(); i-- > 0;) {
      text += "0123456789abcdef"[field->getTapDataChar(i)];
    }
    text += '/';
  }
  return text;
}

TEST(ScanStatement, KeepsTheLastDigits) {
  const std::string digits = "20b000001002030450600";
  const std::string topDigits = "0123456789AB";
  for (const std::size_t size : {std::size_t{2}, kBlockSizes.back()}) {
    const WithBlockSize blocks(size);
    for (std::size_t i = 0; i < 72 * digits.size(); ++i) {
      const std::size_t bits = i % 72 + 1;
      const std::size_t room = (bits + 3) / 4;
      const std::size_t count = i / 72;
      std::string said;
      for (std::size_t at = room; at < count; ++at) {
        if (digits[at - room] == '0') continue;
        said += concat("\nWarning: Ignoring excess MSB chars in field [", digits[at], "]");
      }
      const std::string kept = (std::string(room, '0') + digits.substr(0, count)).substr(count);
      const char top = toUpper(kept[0]);
      if (bits % 4 != 0 && topDigits.find(top) >> bits % 4 != 0) {
        said += concat("\nWarning: 1's in ", 4 - bits % 4, " MSB bits of leading hex char (", top,
                       ") will be ignored [", digits[count - 1], "]");
      }
      // A blank in front takes a value off the short way.
      for (const char* const blank : {"", " "}) {
        EXPECT_EQ(scan(concat(bits, " TDI(", blank, digits.substr(0, count), ");")),
                  said + "\n" + kept + "////");
      }
    }
  }
}

TEST(ScanStatement, HasValuesOfManyDigits) {
  const std::string zeros(16, '0');
  const std::string ones(40, 'f');
  EXPECT_EQ(scan("160 TDI(" + ones + "); 160 TDI(1);"), "\n" + std::string(39, '0') + "1////");
  EXPECT_EQ(scan("65 TDI()TDO()MASK(1" + zeros + ");"),
            "\n0" + zeros + "/0" + zeros + "/1" + zeros + "//");
  EXPECT_EQ(scan("65 TDI()TDO()MASK(2);"),
            "\n0" + zeros + "/0" + zeros + "/0" + zeros.substr(1) + "2//");
  EXPECT_EQ(scan("64 TDI()TDO()MASK();"), "\n" + zeros + "//" + zeros + "//");
}

TEST(ScanStatement, ShowsItsProgress) {
  const auto svf = [](std::size_t digits) {
    return concat("SDR ", 4 * digits, " TDI (", std::string(digits, '7'), ");");
  };
  const std::string reading = "*** Reading hex char #  ";
  const std::string writing = "\r*** Writing hex char #  200000";
  const std::string wipe = "\r" + std::string(58, ' ');
  EXPECT_EQ(toScript(svf(200000)).status, "");
  EXPECT_EQ(toScript(svf(200001)).status, writing + wipe);
  EXPECT_EQ(toScript(svf(400002)).status, "\r" + reading + "400000\r" + reading + "200000" + wipe +
                                              writing + "\r*** Writing hex char #  400000" + wipe);
  const std::string blank = "\r" + std::string(79, ' ') + "\r";
  EXPECT_EQ(toKsvf(svf(200001)).status, "");
  const WithBlockSize blocks(1);
  EXPECT_EQ(toKsvf(svf(200002)).status, blank + reading + "200000" + blank);
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

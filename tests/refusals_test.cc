// What both modes say about statements that they refuse or warn about, to the letter.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "io/text.h"
#include "tests/support/in_memory.h"

namespace tapforge::testing {
namespace {

/// A statement in which <> marks the item that the message is about.
struct Marked {
  explicit Marked(std::string_view statement) : svf(statement) {
    const std::size_t start = svf.find('<');
    if (start == std::string::npos) return;
    const std::size_t end = svf.find('>');
    item = svf.substr(start + 1, end - start - 1);
    svf.replace(start, end - start + 1, item);
    column = start;
    for (const char c : item) lower += toLower(c);
  }
  std::string svf;
  std::string item;
  std::string lower;
  std::size_t column = 0;
};

// What stands before and after a message; [*] in it is the marked item in small letters.
std::string withPrefix(std::string message, const Marked& at) {
  if (const std::size_t star = message.find("[*]"); star != std::string::npos) {
    message.replace(star + 1, 1, at.lower);
  }
  return (message.starts_with("Warning") ? "\n" : "\nError  : ") + message + "\n";
}

void expectIn(const char* mode, const Converted& seen, const std::string& messages) {
  SCOPED_TRACE(mode);
  EXPECT_EQ(seen.messages, messages);
  // Warnings leave the status at 0, but for unknown keywords.
  EXPECT_EQ(seen.good, messages.find("Error") == std::string::npos &&
                           messages.find("Unknown SVF") == std::string::npos);
}

// "" says nothing; a text without a prefix is an error.
void expectInScript(const std::string& message, std::string_view statement) {
  const Marked at(statement);
  const std::string place = "File [input]\tLine 1 (last item read [" + at.item + "]):\n" + at.svf +
                            "\n" + std::string(at.column, ' ') + "^*\n";
  expectIn("script", toScript(at.svf + "\n"),
           message.empty() ? "" : withPrefix(message, at) + place);
}

void expectInKsvf(std::string message, std::string_view statement) {
  const Marked at(statement);
  if (message.starts_with("Expecting [")) message = "Token " + message.substr(10) + " not found";
  expectIn("KSVF", toKsvf(at.svf + "\n"),
           message.empty() ? "" : withPrefix(message, at) + "[input: line 1]:[" + at.item + "]");
}

// Messages, each with statements of which both modes say it.
void expect(const std::vector<std::pair<std::string, std::vector<std::string>>>& table) {
  for (const auto& [message, statements] : table) {
    for (const std::string& statement : statements) {
      SCOPED_TRACE(statement);
      expectInScript(message, statement);
      expectInKsvf(message, statement);
    }
  }
}

TEST(Refusals, KeywordsAndNumbers) {
  expect({
      {"Warning: Unknown SVF keyword [*]",
       {"<FOO> bar;", "<12ab>;", "<FREQUENCX>;", "<SDR1> 8;", "<;> (;"}},
      {"Incorrect FREQUENCY format", {"FREQUENCY <FAST>;", "FREQUENCY - <HZ>;"}},
      {"Expecting [hz]", {"FREQUENCY 5<;>", "FREQUENCY 1E6 <KHZ>;"}},
      {"Expecting [;]", {"FREQUENCY 1E6 HZ <TRST>;"}},
      {"Exponent sign ?", {"FREQUENCY 1.5<;>"}},
      {"Number expected", {"FREQUENCY 1.5e- <HZ>;"}},
      {"Expected positive number", {"FREQUENCY 1.5e--<3> HZ;"}},
      {"Incorrect real number syntax (use digits[.digits][e[+|-]digits])",
       {"FREQUENCY <.>5 HZ;", "FREQUENCY 1.<5f> HZ;", "FREQUENCY <(>;", "FREQUENCY 1.<X> HZ;",
        "FREQUENCY 1.<(>5) HZ;"}},
      {"Positive number required", {"FREQUENCY -5 <HZ>;"}},
      {"Expected a positive number", {"FREQUENCY -2.5 <HZ>;"}},
      {"Warning: Only positive real numbers allowed; TCK set to system default",
       {"FREQUENCY 0 <HZ>;"}},
  });
}

TEST(Refusals, StatesAndWaits) {
  expect({
      {"[*]: invalid end state",
       {"ENDIR <DRSHIFT>;", "ENDDR <NOWHERE>;", "RUNTEST 1 TCK ENDSTATE <DRSHIFT>;"}},
      {"Expecting [;]", {"ENDIR IDLE <IDLE>;", "RUNTEST 1 TCK ENDSTATE IDLE <IDLE>;"}},
      {"[*]: invalid path/stable state", {"STATE RESET <SOMEWHERE>;"}},
      {"[drselect]: stable state must be RESET/IDLE/DRPAUSE/IRPAUSE", {"STATE IDLE DRSELECT<;>"}},
      {"Warning: Unknown TRST type", {"TRST <bogus>;"}},
      {"Warning: No TRSTs allowed after TRST ABSENT", {"TRST ABSENT; TRST ABSENT; TRST <OFF>;"}},
      {"Warning: ABSENT must be placed before SDR/SIR/STATE/RUNTEST/PIO",
       {"RUNTEST 1 TCK; TRST <ABSENT>;", "SIR 8 TDI (0); TRST <ABSENT>;"}},
      {"", {"STATE IDLE; TRST ABSENT;"}},
      {"[*]: invalid run state", {"RUNTEST <DRSHIFT> 10 TCK;"}},
      {"Unsupported RUNTEST time/count format", {"RUNTEST IDLE <TCK>;"}},
      {"Min time (1.00e-03) > Max time (1.00e-03)",
       {"RUNTEST IDLE 100 TCK 1E-3 SEC MAXIMUM 1E-3 SEC<;>"}},
      {"Invalid RUNTEST format",
       {"RUNTEST 100 TCK <MAXIMUM> 1 SEC;", "RUNTEST 1 TCK <ENDSTATES> IDLE;"}},
      {"Invalid RUNTEST max spec", {"RUNTEST 1 TCK 1 SEC MAXIMUM <SEC>;"}},
      {"Invalid ENDSTATE", {"RUNTEST 1 TCK ENDSTATE <5>;"}},
  });
}

TEST(Refusals, ParallelIo) {
  expect({
      {"Warning: No PIOMAP defined; skipping data",
       {"<PIO> (HLZUDX);", "PIOMAP (IN A); PIOMAP (); <PIO> (H);"}},
      {"Incorrect input pin data", {"PIOMAP (IN A); PIO (<U>);"}},
      {"Incorrect output pin data", {"PIOMAP (OUT A); PIO (<H>);"}},
      {"PIO char count != count in last PIOMAP (3)",
       {"PIOMAP (IN A OUT B INOUT C); PIO (hux<l>);"}},
      {"Unexpected PIO char", {"PIOMAP (IN A); PIO (H<,>);"}},
      {"Expecting [(]", {"PIOMAP (IN A); PIO <H>;"}},
      {"Expecting [;]", {"PIOMAP (IN A); PIO (H) <X>;"}},
      {"Unknown/outdated PIOMAP data format", {"PIOMAP (IN A <ON> B);", "PIOMAP (IN <5>);"}},
      {"Warning: [a] already defined\nError  : Invalid PIOMAP data", {"PIOMAP (IN A OUT <a>);"}},
  });
}

TEST(Refusals, Scans) {
  expect({
      {"Warning: TDI data required\nError  : SVF rule violation",
       {"SDR 16 TDO (0000)<;>", "SIR 9223372036854775807<;>", "HDR 4 TDO (0)<;>",
        "SDR 8 TDI (01); SDR 9 TDO (001)<;>"}},
      {"Data length must be > 0", {"SIR <0> TDI (0);", "SDR -<8> TDI (00);"}},
      {"Number expected", {"SDR <TDI> (00);"}},
      {"Unknown token or tdi already specified", {"SDR 8 TDI (00) <tdi> (01);"}},
      {"Invalid SDR format [*]", {"SIR 8 TDI (00) <DATA> (01);"}},
      {"Invalid SVF data [G]", {"SDR 8 TDI (0<G>);"}},
      {"Invalid SVF data [*]", {"SDR 8 TDI (0 <!> 1);"}},
      {"Expecting [(]", {"SDR 8 TDI <00>;", "SDR 8 TDI <)>00);"}},
      {"Warning: Ignoring excess MSB chars in field", {"SDR 8 TDI (1A<5>);"}},
      {"Warning: 1's in 2 MSB bits of leading hex char (7) will be ignored", {"SIR 6 TDI (7<F>);"}},
      {"", {"SIR 00000000000000000000000000008 TDI (01);"}},
      {std::string("Invalid SVF data [\0]", 20), {{"SIR 8 TDI (0<\0>);", 17}}},
  });
}

TEST(Refusals, WhereTheModesDiffer) {
  // A / alone is lost in KSVF.
  expectInScript("Warning: Unknown SVF keyword [*]", "</> x;");
  expectInKsvf("Warning: Unknown SVF keyword [*]", "/ <x>;");
  expectInScript("Expecting [(]", "SIR 8 TDI</>(02);");
  expectInKsvf("", "SIR 8 TDI/(02);");
  expectInScript("Invalid pathstate", "STATE IDLE <DRPAUSE>;");
  expectInKsvf("Invalid pathstate from state idle", "STATE IDLE <DRPAUSE>;");
  const std::string stable = "]: stable state must be RESET/IDLE/DRPAUSE/IRPAUSE";
  expectInScript("[drshift" + stable, "STATE DRSHIFT<;>");
  expectInKsvf("[*]: invalid stable state", "STATE <DRSHIFT>;");
  expectInScript("Warning: GTSN: TAPstate ?\nError  : [" + stable, "STATE <;>");
  expectInKsvf("", "STATE <;>");
  expectInScript("Expecting [sec]", "RUNTEST 1 <MSEC>;");
}

TEST(Refusals, LongTokens) {
  const std::string word(97, 'w');
  expect({{"Warning: Unknown SVF keyword [*]", {"<" + word + ">;"}},
          {"token exceeds 98 characters", {"<>w" + word + ";"}}});
  const std::string svf = "SIR 000000000000000000000000000008 TDI (01);";
  EXPECT_EQ(
      toScript(svf).messages,
      "\nError  : Beyond max number width [30]\nFile [input]\tLine 1 (last item read [SIR]):\n" +
          svf + "\n    ^*\n");
  EXPECT_EQ(toKsvf(svf).messages, "\nError  : number exceeds [30] digits\n[input: line 1]:[ ]");
}

TEST(Refusals, EndOfFileInsideAStatement) {
  for (const std::string_view statement :
       {"STATE <IDLE>", "<ENDIR>", "ENDDR <IDLE>", "FREQUENCY 1E6 <HZ>", "TRST <ON>",
        "RUNTEST 10 <TCK>", "PIOMAP (IN <A>", "PIOMAP (IN A); PIO (H< >", "SDR 8 TDI (0< >",
        "<SIR>", "HDR 0 <TDI>", "SDR 8 TDI (0<0>)"}) {
    const Marked cut(statement);
    EXPECT_EQ(
        toScript(cut.svf + "\n").messages,
        "\nError  : Unexpected EOF\nFile [input]\tLine 2 (last item read [" + cut.item + "]):\n\n");
    EXPECT_EQ(toKsvf(cut.svf + "\n").messages, "\nError  : EOF_CH");
  }
  EXPECT_EQ(toScript("end").messages,
            "\nWarning: Unknown SVF keyword [end]\nFile [input]\tLine 1 (last item read "
            "[end]):\nend\n^*\n"
            "\nError  : Unexpected EOF\nFile [input]\tLine 1 (last item read [end]):\nend\n^*\n");
  EXPECT_EQ(toKsvf("end").messages,
            "\nWarning: Unknown SVF keyword [end]\n[input: line 1]:[end]\nError  : EOF_CH");
  EXPECT_EQ(toScript("SIR 8 TDI (1").messages,
            "\nError  : Unexpected EOF\nFile [input]\tLine 1 (last item read [ ]):\n"
            "SIR 8 TDI (1\n           ^*\n");
  // A blank at the very end has been read with a word, and is seen behind a number.
  const std::string wide(195, ' ');
  const std::pair<std::string, std::size_t> blanks[] = {
      {"SIR ", 0}, {"SIR" + wide, 197}, {"SIR 8 ", 5}, {"FREQUENCY 1E6\t", 13}, {"STATE IDLE ", 6}};
  for (const auto& [svf, column] : blanks) {
    const std::string caret = "\n" + svf + "\n" + std::string(column, ' ') + "^*\n";
    EXPECT_TRUE(toScript(svf).messages.ends_with(caret)) << svf;
  }
  EXPECT_EQ(toKsvf("SIR 6 TDI (7F").messages,
            "\nWarning: 1's in 2 MSB bits of leading hex char (7) will be ignored\n"
            "[input: line 1]:[F]\nError  : EOF_CH");
}

}  // namespace
}  // namespace tapforge::testing

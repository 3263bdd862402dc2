// What both modes say about statements that they refuse or warn about, to the letter.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

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
  }
  std::string svf;
  std::string item;
  std::size_t column = 0;
};

/// "" says nothing; a text without a prefix is an error.
struct Refusal {
  std::string_view statement;
  std::string message;
  // Where the KSVF mode says something else.
  std::string_view ksvfStatement = statement;
  std::string ksvfMessage = message;
};

std::string withPrefix(const std::string& message) {
  return (message.starts_with("Warning") ? "\n" : "\nError  : ") + message + "\n";
}

std::string inScript(const Refusal& each) {
  if (each.message.empty()) return "";
  const Marked at(each.statement);
  return withPrefix(each.message) + "File [input]\tLine 1 (last item read [" + at.item + "]):\n" +
         at.svf + "\n" + std::string(at.column, ' ') + "^*\n";
}

std::string inKsvf(const Refusal& each) {
  if (each.ksvfMessage.empty()) return "";
  std::string message = each.ksvfMessage;
  if (message.starts_with("Expecting [")) message = "Token " + message.substr(10) + " not found";
  return withPrefix(message) + "[input: line 1]:[" + Marked(each.ksvfStatement).item + "]";
}

// Warnings leave the status at 0, but for unknown keywords.
bool isGood(const std::string& messages) {
  return messages.find("Error") == std::string::npos &&
         messages.find("Unknown SVF") == std::string::npos;
}

void expect(const std::vector<Refusal>& table) {
  for (const Refusal& each : table) {
    const Converted script = toScript(Marked(each.statement).svf + "\n");
    EXPECT_EQ(script.messages, inScript(each));
    EXPECT_EQ(script.good, isGood(script.messages)) << each.statement;
    const Converted ksvf = toKsvf(Marked(each.ksvfStatement).svf + "\n");
    EXPECT_EQ(ksvf.messages, inKsvf(each));
    EXPECT_EQ(ksvf.good, isGood(ksvf.messages)) << each.ksvfStatement;
  }
}

TEST(Refusals, Keywords) {
  const std::string unknown = "Warning: Unknown SVF keyword ";
  expect({
      {"<FOO> bar;", unknown + "[foo]"},
      {"<12ab>;", unknown + "[12ab]"},
      {"<FREQUENCX>;", unknown + "[frequencx]"},
      {"<SDR1> 8;", unknown + "[sdr1]"},
      {"<;> (;", unknown + "[;]"},
      // A / alone is lost in KSVF.
      {"</> x;", unknown + "[/]", "/ <x>;", unknown + "[x]"},
      {"SIR 8 TDI</>(02);", "Expecting [(]", "SIR 8 TDI/(02);", ""},
  });
}

TEST(Refusals, Numbers) {
  const std::string real = "Incorrect real number syntax (use digits[.digits][e[+|-]digits])";
  expect({
      {"FREQUENCY <FAST>;", "Incorrect FREQUENCY format"},
      {"FREQUENCY - <HZ>;", "Incorrect FREQUENCY format"},
      {"FREQUENCY 5<;>", "Expecting [hz]"},
      {"FREQUENCY 1E6 <KHZ>;", "Expecting [hz]"},
      {"FREQUENCY 1E6 HZ <TRST>;", "Expecting [;]"},
      {"FREQUENCY 1.5<;>", "Exponent sign ?"},
      {"FREQUENCY 1.5e- <HZ>;", "Number expected"},
      {"FREQUENCY 1.5e--<3> HZ;", "Expected positive number"},
      {"FREQUENCY <.>5 HZ;", real},
      {"FREQUENCY 1.<5f> HZ;", real},
      {"FREQUENCY <(>;", real},
      {"FREQUENCY 1.<X> HZ;", real},
      {"FREQUENCY 1.<(>5) HZ;", real},
      {"FREQUENCY -5 <HZ>;", "Positive number required"},
      {"FREQUENCY -2.5 <HZ>;", "Expected a positive number"},
      {"FREQUENCY 0 <HZ>;",
       "Warning: Only positive real numbers allowed; TCK set to system default"},
  });
}

TEST(Refusals, States) {
  const std::string stable = ": stable state must be RESET/IDLE/DRPAUSE/IRPAUSE";
  const std::string late = "Warning: ABSENT must be placed before SDR/SIR/STATE/RUNTEST/PIO";
  expect({
      {"ENDIR <DRSHIFT>;", "[drshift]: invalid end state"},
      {"ENDDR <NOWHERE>;", "[nowhere]: invalid end state"},
      {"ENDIR IDLE <IDLE>;", "Expecting [;]"},
      {"STATE RESET <SOMEWHERE>;", "[somewhere]: invalid path/stable state"},
      {"STATE IDLE <DRPAUSE>;", "Invalid pathstate", "STATE IDLE <DRPAUSE>;",
       "Invalid pathstate from state idle"},
      {"STATE IDLE DRSELECT<;>", "[drselect]" + stable},
      {"STATE DRSHIFT<;>", "[drshift]" + stable, "STATE <DRSHIFT>;",
       "[drshift]: invalid stable state"},
      {"STATE <;>", "Warning: GTSN: TAPstate ?\nError  : []" + stable, "STATE <;>", ""},
      {"TRST <bogus>;", "Warning: Unknown TRST type"},
      {"TRST ABSENT; TRST ABSENT; TRST <OFF>;", "Warning: No TRSTs allowed after TRST ABSENT"},
      {"RUNTEST 1 TCK; TRST <ABSENT>;", late},
      {"SIR 8 TDI (0); TRST <ABSENT>;", late},
      {"STATE IDLE; TRST ABSENT;", ""},
  });
}

TEST(Refusals, Waits) {
  expect({
      {"RUNTEST <DRSHIFT> 10 TCK;", "[drshift]: invalid run state"},
      {"RUNTEST IDLE <TCK>;", "Unsupported RUNTEST time/count format"},
      {"RUNTEST 1 <MSEC>;", "Expecting [sec]", "", ""},
      {"RUNTEST IDLE 100 TCK 1E-3 SEC MAXIMUM 1E-3 SEC<;>",
       "Min time (1.00e-03) > Max time (1.00e-03)"},
      {"RUNTEST 100 TCK <MAXIMUM> 1 SEC;", "Invalid RUNTEST format"},
      {"RUNTEST 1 TCK 1 SEC MAXIMUM <SEC>;", "Invalid RUNTEST max spec"},
      {"RUNTEST 1 TCK ENDSTATE <DRSHIFT>;", "[drshift]: invalid end state"},
      {"RUNTEST 1 TCK ENDSTATE <5>;", "Invalid ENDSTATE"},
      {"RUNTEST 1 TCK <ENDSTATES> IDLE;", "Invalid RUNTEST format"},
      {"RUNTEST 1 TCK ENDSTATE IDLE <IDLE>;", "Expecting [;]"},
  });
}

TEST(Refusals, ParallelIo) {
  const std::string format = "Unknown/outdated PIOMAP data format";
  expect({
      {"<PIO> (HLZUDX);", "Warning: No PIOMAP defined; skipping data"},
      {"PIOMAP (IN A); PIOMAP (); <PIO> (H);", "Warning: No PIOMAP defined; skipping data"},
      {"PIOMAP (IN A); PIO (<U>);", "Incorrect input pin data"},
      {"PIOMAP (OUT A); PIO (<H>);", "Incorrect output pin data"},
      {"PIOMAP (IN A OUT B INOUT C); PIO (hux<l>);", "PIO char count != count in last PIOMAP (3)"},
      {"PIOMAP (IN A); PIO (H<,>);", "Unexpected PIO char"},
      {"PIOMAP (IN A); PIO <H>;", "Expecting [(]"},
      {"PIOMAP (IN A); PIO (H) <X>;", "Expecting [;]"},
      {"PIOMAP (IN A <ON> B);", format},
      {"PIOMAP (IN <5>);", format},
      {"PIOMAP (IN A OUT <a>);", "Warning: [a] already defined\nError  : Invalid PIOMAP data"},
  });
}

TEST(Refusals, Scans) {
  const std::string excess = "Warning: Ignoring excess MSB chars in field";
  const std::string rule = "Warning: TDI data required\nError  : SVF rule violation";
  expect({
      {"SDR 16 TDO (0000)<;>", rule},
      {"SIR 9223372036854775807<;>", rule},
      {"HDR 4 TDO (0)<;>", rule},
      {"SDR 8 TDI (01); SDR 9 TDO (001)<;>", rule},
      {"SIR <0> TDI (0);", "Data length must be > 0"},
      {"SDR -<8> TDI (00);", "Data length must be > 0"},
      {"SDR <TDI> (00);", "Number expected"},
      {"SDR 8 TDI (00) <tdi> (01);", "Unknown token or tdi already specified"},
      {"SIR 8 TDI (00) <DATA> (01);", "Invalid SDR format [data]"},
      {"SDR 8 TDI (0<G>);", "Invalid SVF data [G]"},
      {"SDR 8 TDI (0 <!> 1);", "Invalid SVF data [!]"},
      {"SDR 8 TDI <00>;", "Expecting [(]"},
      {"SDR 8 TDI <)>00);", "Expecting [(]"},
      {"SDR 8 TDI (1A<5>);", excess},
      {"SIR 6 TDI (7<F>);", "Warning: 1's in 2 MSB bits of leading hex char (7) will be ignored"},
  });
  const std::string zero("SIR 8 TDI (0\0);", 15);
  EXPECT_EQ(toKsvf(zero).messages, "\nError  : Invalid SVF data [" + std::string(1, '\0') +
                                       "]\n[input: line 1]:[" + std::string(1, '\0') + "]");
}

TEST(Refusals, LongTokens) {
  const std::string word(97, 'w');
  expect({{"<" + word + ">;", "Warning: Unknown SVF keyword [" + word + "]"},
          {"<>w" + word + ";", "token exceeds 98 characters"},
          {"SIR 00000000000000000000000000008 TDI (01);", ""}});
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
  const std::string end = "end";
  EXPECT_EQ(toScript(end).messages,
            "\nWarning: Unknown SVF keyword [end]\nFile [input]\tLine 1 (last item read "
            "[end]):\nend\n^*\n"
            "\nError  : Unexpected EOF\nFile [input]\tLine 1 (last item read [end]):\nend\n^*\n");
  EXPECT_EQ(toKsvf(end).messages,
            "\nWarning: Unknown SVF keyword [end]\n[input: line 1]:[end]\nError  : EOF_CH");
  EXPECT_EQ(toScript("SIR 8 TDI (1").messages,
            "\nError  : Unexpected EOF\nFile [input]\tLine 1 (last item read [ ]):\n"
            "SIR 8 TDI (1\n           ^*\n");
  // A blank at the very end has been read with a word, and is seen behind a number.
  const std::pair<std::string, std::size_t> blanks[] = {
      {"SIR ", 0}, {"SIR  ", 4}, {"SIR 8 ", 5}, {"FREQUENCY 1E6\t", 13}, {"STATE IDLE ", 6}};
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

#include "svf/runtest.h"

#include "io/text.h"

namespace tapforge {

using Kind = RunTestPart::Kind;

void readRunTest(FileChannel& channel, const std::function<void(const RunTestPart&)>& take) {
  Reporter& report = channel.report();
  const auto takeState = [&](Kind kind, std::string_view message) {
    const TapState state = checkTapState(StateUse::stable, message, channel);
    take({kind, state, {}, channel.tokenAsWritten()});
  };
  const auto takeTime = [&](Kind kind, const Number& seconds) {
    channel.strSearch("sec");
    take({kind, TapState::unknown, seconds, channel.tokenAsWritten()});
  };

  channel.lex();
  if (channel.type() == TokenType::word && !testIsNum(channel.tokenAsWritten())) {
    takeState(Kind::runState, "invalid run state");
  } else {
    channel.unlex();
  }

  Number number = getFloat(channel);
  if (!number) report.fatal("Unsupported RUNTEST time/count format");
  channel.lex();
  const bool timesBecomeCounts = channel.rules().timesBecomeCounts;
  const bool isCount = channel.is("tck") || (channel.is("sck") && !timesBecomeCounts);
  if (isCount || timesBecomeCounts) {
    const Kind kind = isCount ? Kind::count : Kind::time;
    take({kind, TapState::unknown, number, channel.tokenAsWritten()});
    number = getFloat(channel);
    if (!number) channel.unlex();
  } else {
    channel.unlex();
  }

  if (number) {
    takeTime(Kind::minTime, number);
    if (channel.lexIs("maximum")) {
      const Number maximum = getFloat(channel);
      if (!maximum) report.fatal("Invalid RUNTEST max spec");
      takeTime(Kind::maxTime, maximum);
    } else {
      channel.unlex();
    }
  }

  if (channel.lexIs(";")) return;
  if (!channel.is("endstate")) report.fatal("Invalid RUNTEST format");
  channel.lex();
  if (channel.type() != TokenType::word) report.fatal("Invalid ENDSTATE");
  takeState(Kind::endState, "invalid end state");
  channel.strSearch(";");
}

void RunTestNumbers::add(const RunTestPart& part) {
  if (part.kind == Kind::count) fRunCount = part.number.asFloat();
  if (part.kind == Kind::minTime) fMinTime = part.number.asFloat();
  if (part.kind == Kind::maxTime) fMaxTime = part.number.asFloat();
}

void checkRunTest(const RunTestNumbers& numbers, float& frequency, Reporter& report) {
  const float maximum = numbers.fMaxTime;
  if (!(maximum >= 0)) return;
  if (numbers.fMinTime >= maximum) {
    report.fatal(concat("Min time (", shortExponent(numbers.fMinTime), ") > Max time (",
                        shortExponent(maximum), ")"));
  }
  if (!(numbers.fRunCount >= 0)) return;
  if (frequency < 0) {
    report.note("Frequency not specified, using default TCK = 1 MHz");
    frequency = 1.0e6F;
  }
  const float time = numbers.fRunCount / frequency;
  if (time > maximum) {
    report.fatal(concat(shortExponent(time), " (Run count ", shortExponent(numbers.fRunCount), "/",
                        shortExponent(frequency), " Hz) > max (", shortExponent(maximum), ") sec"));
  }
}

}  // namespace tapforge

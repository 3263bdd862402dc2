#include "svf/runtest.h"

#include "io/text.h"

namespace tapforge {

using Kind = RunTestPart::Kind;

std::optional<RunTestPart> RunTestReader::next() {
  if (step_ == Step::runState) {
    step_ = Step::number;
    if (const auto part = runState()) return part;
  }
  if (step_ == Step::number) return firstNumber();
  if (step_ == Step::afterCount) {
    step_ = Step::endState;
    if (const Number time = getFloat(channel_)) return minTime(time);
    channel_.unlex();
  }
  if (step_ == Step::afterMinTime) {
    step_ = Step::endState;
    if (const auto part = maxTime()) return part;
  }
  if (step_ == Step::endState) return endState();
  if (step_ == Step::semicolon) channel_.strSearch(";");
  return std::nullopt;
}

std::optional<RunTestPart> RunTestReader::runState() {
  channel_.lex();
  if (channel_.type() != TokenType::word || testIsNum(channel_.tokenAsWritten())) {
    channel_.unlex();
    return std::nullopt;
  }
  const TapState state = checkTapState(StateUse::stable, "invalid run state", channel_);
  return RunTestPart{Kind::runState, state, {}, channel_.tokenAsWritten()};
}

RunTestPart RunTestReader::firstNumber() {
  const Number number = getFloat(channel_);
  if (!number) channel_.report().fatal("Unsupported RUNTEST time/count format");
  step_ = Step::afterCount;
  channel_.lex();
  const bool timesBecomeCounts = channel_.rules().timesBecomeCounts;
  if (channel_.is("tck") || (channel_.is("sck") && !timesBecomeCounts)) {
    return {Kind::count, TapState::unknown, number, channel_.tokenAsWritten()};
  }
  if (timesBecomeCounts) return {Kind::time, TapState::unknown, number, channel_.tokenAsWritten()};
  channel_.unlex();
  return minTime(number);
}

RunTestPart RunTestReader::minTime(const Number& seconds) {
  channel_.strSearch("sec");
  step_ = Step::afterMinTime;
  return {Kind::minTime, TapState::unknown, seconds, channel_.tokenAsWritten()};
}

std::optional<RunTestPart> RunTestReader::maxTime() {
  if (channel_.lexIs(";")) {
    step_ = Step::done;
    return std::nullopt;
  }
  if (!channel_.is("maximum")) {
    channel_.unlex();
    return std::nullopt;
  }
  const Number maximum = getFloat(channel_);
  if (!maximum) channel_.report().fatal("Invalid RUNTEST max spec");
  channel_.strSearch("sec");
  return RunTestPart{Kind::maxTime, TapState::unknown, maximum, channel_.tokenAsWritten()};
}

std::optional<RunTestPart> RunTestReader::endState() {
  if (channel_.lexIs(";")) return std::nullopt;
  if (!channel_.is("endstate")) channel_.report().fatal("Invalid RUNTEST format");
  channel_.lex();
  if (channel_.type() != TokenType::word) channel_.report().fatal("Invalid ENDSTATE");
  const TapState state = checkTapState(StateUse::stable, "invalid end state", channel_);
  // The ";" is read by the next call, which has nothing else to give.
  step_ = Step::semicolon;
  return RunTestPart{Kind::endState, state, {}, channel_.tokenAsWritten()};
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

#include "scan/exact.h"

#include <algorithm>
#include <utility>

#include "io/text.h"

namespace tapforge {

void ExactRules::refuse(std::string_view why) { channel_.report().fatal(concat("-exact: ", why)); }

// Rounded up: no wait may be shorter.
std::int64_t ExactRules::clocksOf(std::string_view number, std::int64_t hertz) {
  const auto product = exactProduct(number, hertz);
  std::int64_t clocks = 0;
  if (!product || __builtin_add_overflow(product->whole, product->hasFraction ? 1 : 0, &clocks)) {
    refuse("a wait of more than 2^63-1 clocks");
  }
  return clocks;
}

void ExactRules::runTestPart(const RunTestPart& part) {
  using Kind = RunTestPart::Kind;
  const std::string_view number = channel_.numberText();
  switch (part.kind) {
    case Kind::runState:
      tap_.iRunState = tap_.iRunEndState = part.state;
      break;
    case Kind::endState:
      tap_.iRunEndState = part.state;
      break;
    case Kind::count:
      if (channel_.is("tck")) {
        clocks_ = std::max(clocks_, clocksOf(number, 1));
      } else if (!saysAll()) {
        refuse(concat(form_, " cannot wait for a count of SCK"));
      }
      break;
    case Kind::minTime:
      if (saysAll()) break;
      if (tckFreq_ > 0) {
        clocks_ = std::max(clocks_, clocksOf(number, tckFreq_));
      } else {
        refuse(concat("a time becomes clocks in ", form_, ", which needs -tck_freq"));
      }
      timeConverted_ = true;
      break;
    case Kind::maxTime:
      if (tckFreq_ > 0) {
        const auto most = exactProduct(number, tckFreq_);
        if (most) mostClocks_ = most->whole;
      }
      if (!saysAll()) {
        channel_.report().warning(concat(form_, " has no MAXIMUM, which is left out"));
      }
      break;
    case Kind::time:
      break;  // where times become counts while they are read, which is never here
  }
}

std::int64_t ExactRules::endRunTest() {
  const std::int64_t clocks = std::exchange(clocks_, 0);
  if (clocks > std::exchange(mostClocks_, kNone)) {
    refuse(concat("the wait is longer than its MAXIMUM at ", tckFreq_, " Hz"));
  }
  tap_.iCurState = tap_.iRunEndState;
  return clocks;
}

void ExactRules::frequency(const Frequency& frequency) {
  if (frequency.asWritten.empty()) return;
  const auto hertz = exactProduct(frequency.asWritten, 1);
  const std::int64_t whole = hertz ? hertz->whole : kNone;
  if (whole < lowestFrequency_) {
    lowestFrequency_ = whole;
    lowestAsWritten_ = frequency.asWritten;
  }
  if (saysAll() || tckFreq_ <= whole) return;
  refuse(concat(form_, " has no FREQUENCY, and this one is below -tck_freq: ",
                whole > 0 ? concat("use -tck_freq ", whole, " or less") : "no TCK is low enough"));
}

void ExactRules::resetLine(TrstMode mode) {
  if (!saysAll() && mode == TrstMode::on) refuse(concat(form_, " has no TRST ON"));
}

void ExactRules::parallelIo() {
  if (!saysAll()) refuse(concat(form_, " has no parallel I/O"));
}

void ExactRules::scan(ScanRegister which) {
  scanSeen_ = true;
  tap_.iCurState = tap_.endStateOf(which);
}

void ExactRules::endOfSource() {
  Reporter& report = channel_.report();
  if (!scanSeen_) report.fatal("-exact: the source has no SIR or SDR", Where::nowhere);
  if (saysAll() || timeConverted_ || lowestFrequency_ == kNone) return;
  report.note(concat("May be played at a TCK of at most ", lowestAsWritten_, " Hz (FREQUENCY)"),
              Where::nowhere);
}

}  // namespace tapforge

#include "svf/clock_and_reset.h"

#include "svf/numbers.h"

namespace tapforge {
namespace {

TrstMode modeNamed(const FileChannel& channel) {
  if (channel.is("on")) return TrstMode::on;
  if (channel.is("off")) return TrstMode::off;
  if (channel.is("z")) return TrstMode::z;
  if (channel.is("absent")) return TrstMode::absent;
  return TrstMode::none;
}

}  // namespace

Frequency readFrequency(FileChannel& channel) {
  Frequency frequency{-1.0F, {}, {}};
  if (const Number number = getFloat(channel)) {
    frequency = {number.asFloat(), channel.numberText(), {}};
    if (channel.rules().exact) {
      const auto hertz = exactProduct(frequency.asWritten, 1);
      if (hertz && hertz->whole == 0 && !hertz->hasFraction) {
        channel.report().fatal("-exact: a FREQUENCY that is not above 0");
      }
    } else if (!(frequency.hertz > 0)) {
      channel.report().warning("Only positive real numbers allowed; TCK set to system default");
      frequency.hertz = -1.0F;
    }
    channel.strSearch("hz");
    frequency.unit = channel.tokenAsWritten();
  } else {
    if (!channel.is(";")) channel.report().fatal("Incorrect FREQUENCY format");
    channel.unlex();
  }
  channel.strSearch(";");
  return frequency;
}

Trst readTrst(TrstMode inForce, bool scanSeen, FileChannel& channel) {
  Reporter& report = channel.report();
  channel.lex();
  Trst trst{modeNamed(channel), std::string(channel.tokenAsWritten())};
  if (trst.mode == TrstMode::none) {
    if (channel.rules().exact) report.fatal("Unknown TRST type");
    report.warning("Unknown TRST type");
    trst.mode = inForce;
  } else if (trst.mode == TrstMode::absent) {
    if (scanSeen) report.warning("ABSENT must be placed before SDR/SIR/STATE/RUNTEST/PIO");
  } else if (inForce == TrstMode::absent) {
    report.warning("No TRSTs allowed after TRST ABSENT");
  }
  channel.strSearch(";");
  return trst;
}

}  // namespace tapforge

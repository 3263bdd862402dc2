#include "svf/clock_statements.h"

#include "svf/real_number.h"

namespace tapforge {

void readFrequency(Run& run) {
  float& frequency = run.tap.fTckFreq;
  if (const Number number = getFloat(run.lexer)) {
    frequency = number.asFloat();
    if (!(frequency > 0)) {
      run.report.warning("Only positive real numbers allowed; TCK set to system default");
      frequency = -1.0F;
    }
    run.lexer.strSearch("hz");
  } else {
    if (!run.lexer.is(";")) run.report.fatal("Incorrect FREQUENCY format");
    run.lexer.unlex();
    frequency = -1.0F;
  }
  run.lexer.strSearch(";");
}

void readTrstMode(Run& run) { run.lexer.lex(); }

void finishTrst(Run& run) {
  TrstMode mode = TrstMode::none;
  if (run.lexer.is("on")) {
    mode = TrstMode::on;
  } else if (run.lexer.is("off")) {
    mode = TrstMode::off;
  } else if (run.lexer.is("z")) {
    mode = TrstMode::z;
  } else if (run.lexer.is("absent")) {
    mode = TrstMode::absent;
  }
  TrstMode& inForce = run.tap.iTrstMode;
  if (mode == TrstMode::none) {
    run.report.warning("Unknown TRST type");
  } else if (mode == TrstMode::absent) {
    if (run.tap.iSvfTrstRule) {
      run.report.warning("ABSENT must be placed before SDR/SIR/STATE/RUNTEST/PIO");
    }
    inForce = mode;
  } else {
    if (inForce == TrstMode::absent) run.report.warning("No TRSTs allowed after TRST ABSENT");
    inForce = mode;
  }
  run.lexer.strSearch(";");
}

}  // namespace tapforge

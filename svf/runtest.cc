#include "svf/runtest.h"

#include "shell/io/text.h"

namespace tapforge {
namespace {

class RunTestReader {
 public:
  RunTestReader(Run& run, RunTestSink& sink)
      : lexer_(run.lexer), report_(run.report), tap_(run.tap), sink_(sink) {}

  void read() {
    tap_.fRunCount = tap_.fMinTime = tap_.fMaxTime = -1.0F;
    readRunState();
    const Number number = getFloat(lexer_);
    if (!number) report_.fatal("Unsupported RUNTEST time/count format");
    bool statementEnded = false;
    if (readCount(number)) {
      if (const Number time = getFloat(lexer_)) {
        statementEnded = readMinTime(time);
      } else {
        lexer_.unlex();
      }
    } else {
      statementEnded = readMinTime(number);
    }
    if (!statementEnded) readEndState();
    check();
  }

 private:
  void readRunState() {
    lexer_.lex();
    if (lexer_.type() != TokenType::word || testIsNum(lexer_.token())) {
      lexer_.unlex();
      return;
    }
    tap_.iRunState = checkTapState(StateUse::stable, "invalid run state", lexer_);
    sink_.runState(lexer_.token());
  }

  // Whether the number is a clock count by its unit, which is then consumed.
  bool readCount(const Number& number) {
    lexer_.lex();
    const bool timesNeedFrequency = lexer_.source().syntax().timesNeedFrequency;
    if (lexer_.is("tck") || (lexer_.is("sck") && !timesNeedFrequency)) {
      tap_.fRunCount = number.asFloat();
    } else if (timesNeedFrequency) {
      tap_.fRunCount = sink_.countOfTime(number, lexer_.token());
    } else {
      lexer_.unlex();
      return false;
    }
    sink_.runCount(truncated(tap_.fRunCount), lexer_.tokenAsWritten());
    return true;
  }

  // The rest of a minimum time, and a maximum time after it. Whether the
  // statement has ended.
  bool readMinTime(const Number& time) {
    tap_.fMinTime = time.asFloat();
    lexer_.strSearch("sec");
    sink_.minTime(tap_.fMinTime);
    if (lexer_.lexIs(";")) return true;
    if (!lexer_.is("maximum")) {
      lexer_.unlex();
      return false;
    }
    const Number maximum = getFloat(lexer_);
    if (!maximum) report_.fatal("Invalid RUNTEST max spec");
    tap_.fMaxTime = maximum.asFloat();
    lexer_.strSearch("sec");
    sink_.maxTime(tap_.fMaxTime);
    return false;
  }

  void readEndState() {
    if (lexer_.lexIs(";")) return;
    if (!lexer_.is("endstate")) report_.fatal("Invalid RUNTEST format");
    lexer_.lex();
    if (lexer_.type() != TokenType::word) report_.fatal("Invalid ENDSTATE");
    tap_.iRunEndState = checkTapState(StateUse::stable, "invalid end state", lexer_);
    sink_.endState(lexer_.token());
    lexer_.strSearch(";");
  }

  void check() {
    const float maximum = tap_.fMaxTime;
    if (!(maximum >= 0)) return;
    if (tap_.fMinTime >= maximum) {
      report_.fatal(concat("Min time (", shortExponent(tap_.fMinTime), ") > Max time (",
                           shortExponent(maximum), ")"));
    }
    if (!(tap_.fRunCount >= 0)) return;
    if (tap_.fTckFreq < 0) {
      report_.errHandler(Level::note, "Frequency not specified, using default TCK = 1 MHz",
                         Where::input);
      tap_.fTckFreq = 1.0e6F;
    }
    const float time = tap_.fRunCount / tap_.fTckFreq;
    if (time > maximum) {
      report_.fatal(concat(shortExponent(time), " (Run count ", shortExponent(tap_.fRunCount), "/",
                           shortExponent(tap_.fTckFreq), " Hz) > max (", shortExponent(maximum),
                           ") sec"));
    }
  }

  Lexer& lexer_;
  Reporter& report_;
  CTapObj& tap_;
  RunTestSink& sink_;
};

}  // namespace

void readRunTest(Run& run, RunTestSink& sink) { RunTestReader(run, sink).read(); }

}  // namespace tapforge

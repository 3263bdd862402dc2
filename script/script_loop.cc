#include "script/script_loop.h"

#include <utility>

#include "scan/scan_statement.h"
#include "script/scan_writer.h"
#include "script/script_traits.h"
#include "script/script_writer.h"
#include "svf/clock_statements.h"
#include "svf/pio.h"
#include "svf/statements.h"

namespace progmode_svf2tapbus {
namespace {

using tapforge::Run;

void doEndState(ScanRegister which, Run& run, ScriptWriter& script) {
  script.endStateStatement(which, tapforge::readEndState(which, run));
}

// Every path starts from an unknown state: mode 0 keeps none between
// statements, so a path may begin anywhere.
void doState(Run& run, ScriptWriter& script) {
  script.beginState();
  TapState previous = TapState::unknown;
  while (!run.lexer.lexIs(";")) {
    const TapState state = tapforge::readPathState(run);
    if (previous != TapState::unknown && !tapforge::checkTapPath(previous, state)) {
      run.report.fatal("Invalid pathstate");
    }
    script.pathState(run.lexer.tokenAsWritten());
    previous = state;
  }
  tapforge::checkFinalState(previous, run);
  script.endOfState();
}

void doTrst(Run& run, ScriptWriter& script) {
  tapforge::readTrstMode(run);
  script.beginTrst(run.lexer.tokenAsWritten());
  tapforge::finishTrst(run);
  script.endOfTrst();
}

void doRunTest(Run& run, ScriptWriter& script) {
  run.tap.iSvfTrstRule = true;
  script.beginRunTest();
  tapforge::readRunTest(run, script);
  script.endOfRunTest();
}

void doScan(Keyword scan, Run& run, ScanWriter& writer) {
  const bool dataRequired = scan == Keyword::sir || scan == Keyword::sdr;
  if (dataRequired) run.tap.iSvfTrstRule = true;
  CTapPattern& pattern = tapforge::patternOf(scan, run.tap);
  const tapforge::ScanData data = tapforge::readTapData(dataRequired, pattern, run);
  tapforge::storeScan(pattern, data, run);
  writer.doDataShift(scan, run.tap);
}

}  // namespace

bool processSVF(const ScriptVars& vars, tapforge::InputFile& input, OutputFile& output,
                Reporter& report) {
  CommentCopier comments(vars, output);
  LineReader source(std::move(input.file), input.name, kSyntaxRules, report, comments);
  Run run(source, report);
  ScriptWriter script(vars, output, source, report);
  ScanWriter scans(vars, output, script, report);
  bool allKnown = true;
  while (run.lexer.lexKeyword()) {
    const long line = source.lineNumber();
    if (vars.lGlobPrintLine > 0 && line % vars.lGlobPrintLine == 0) script.lineMarker(line);
    const Keyword keyword = tapforge::keywordOf(run.lexer);
    switch (keyword) {
      case Keyword::hir:
      case Keyword::hdr:
      case Keyword::sir:
      case Keyword::sdr:
      case Keyword::tir:
      case Keyword::tdr:
        doScan(keyword, run, scans);
        break;
      case Keyword::runtest:
        doRunTest(run, script);
        break;
      case Keyword::state:
        doState(run, script);
        break;
      case Keyword::endir:
        doEndState(ScanRegister::instruction, run, script);
        break;
      case Keyword::enddr:
        doEndState(ScanRegister::data, run, script);
        break;
      case Keyword::frequency:
        tapforge::readFrequency(run);
        script.frequency(run.tap.fTckFreq);
        break;
      case Keyword::trst:
        doTrst(run, script);
        break;
      case Keyword::piomap:
        tapforge::readPioMap(run);
        break;
      case Keyword::pio:
        tapforge::readPio(run);
        break;
      case Keyword::unknown:
        allKnown = tapforge::skipUnknown(run) && allKnown;
        break;
    }
  }
  return allKnown;
}

}  // namespace progmode_svf2tapbus

#include "script/script_mode.h"

#include "scan/scan_statement.h"
#include "script/script_writer.h"
#include "svf/state_statements.h"

namespace tapforge::progmode_svf2tapbus {
namespace {

/// Hands what the parsers read to the writer, in the order of the text.
class ScriptLoop {
 public:
  ScriptLoop(const ScriptVars& vars, InputFile& input, OutputFile& output, Reporter& report)
      : vars_(vars),
        writer_(vars.iGlobOutFormat ? makeTclWriter(vars, output, report)
                                    : makeSvfWriter(vars, output, report)),
        channel_(input, kSyntaxRules, report, writer_.get()) {}

  bool processSVF() {
    bool allKnown = true;
    while (channel_.lexKeyword()) {
      markLine();
      allKnown = doStatement(channel_, *this) && allKnown;
    }
    return allKnown;
  }

  void doScan(Keyword keyword) {
    if (shiftsData(keyword)) pGlobTapData_.iSvfTrstRule = true;
    if (!readTapData(keyword, pGlobTapData_, channel_)) {
      endByRuleViolation(channel_.report());
    }
    writer_->doDataShift(keyword, pGlobTapData_, channel_.lineRest());
  }

  void doRunTest() {
    pGlobTapData_.iSvfTrstRule = true;
    writer_->beginRunTest();
    RunTestNumbers numbers;
    readRunTest(channel_, [&](const RunTestPart& part) {
      numbers.add(part);
      writer_->runTestPart(part);
    });
    checkRunTest(numbers, pGlobTapData_.fTckFreq, channel_.report());
    writer_->endRunTest();
    writer_->writeStatement(channel_.lineRest());
  }

  // Every path starts from an unknown state: mode 0 keeps none between
  // statements, so a path may begin anywhere.
  void doState() {
    writer_->beginState();
    readStatePath(TapState::unknown, channel_,
                  [&](const PathStep& step) { writer_->pathState(step.asWritten); });
    writer_->endState();
    writer_->writeStatement(channel_.lineRest());
  }

  void doEndState(ScanRegister which) {
    writer_->endStateStatement(which, readEndState(channel_));
    writer_->writeStatement(channel_.lineRest());
  }

  void doFrequency() {
    pGlobTapData_.fTckFreq = readFrequency(channel_);
    writer_->frequency(pGlobTapData_.fTckFreq);
    writer_->writeStatement(channel_.lineRest());
  }

  void doTrst() {
    const Trst trst = readTrst(pGlobTapData_.iTrstMode, pGlobTapData_.iSvfTrstRule, channel_);
    pGlobTapData_.iTrstMode = trst.mode;
    writer_->trst(trst.asWritten);
    writer_->writeStatement(channel_.lineRest());
  }

  // Parallel I/O is checked and written in no form.
  void doPioMap() { pGlobTapData_.pPioMap = readPioMap(channel_); }
  void doPio() { readPio(pGlobTapData_.pPioMap, channel_); }

 private:
  // Marks every lGlobPrintLine-th line.
  void markLine() {
    if (vars_.lGlobPrintLine <= 0) return;
    const std::int64_t line = channel_.lineNumber();
    if (line % vars_.lGlobPrintLine == 0) writer_->lineMarker(line);
  }

  const ScriptVars& vars_;
  std::unique_ptr<ScriptWriter> writer_;
  FileChannel channel_;
  CTapObj pGlobTapData_;
};

}  // namespace

bool processSVF(const ScriptVars& vars, InputFile& input, OutputFile& output, Reporter& report) {
  return ScriptLoop(vars, input, output, report).processSVF();
}

}  // namespace tapforge::progmode_svf2tapbus

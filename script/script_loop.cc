#include "script/script_loop.h"

#include "scan/scan_statement.h"
#include "script/script_traits.h"
#include "script/script_writer.h"
#include "svf/state_statements.h"
#include "svf/statement_loop.h"

namespace progmode_svf2tapbus {
namespace {

using tapforge::FileChannel;

/// Hands what the parsers read to the writer, in the order of the text.
class ScriptLoop {
 public:
  ScriptLoop(const ScriptVars& vars, tapforge::InputFile& input, OutputFile& output,
             Reporter& report)
      : vars_(vars),
        writer_(vars.iGlobOutFormat ? makeTclWriter(vars, output, report)
                                    : makeSvfWriter(vars, output, report)),
        channel_(input, kSyntaxRules, report, writer_.get()) {}

  bool processSVF() { return tapforge::doStatements(channel_, *this); }

  void beforeKeyword() {}

  // Marks every lGlobPrintLine-th line.
  void afterKeyword() {
    if (vars_.lGlobPrintLine <= 0) return;
    const std::int64_t line = channel_.lineNumber();
    if (line % vars_.lGlobPrintLine == 0) writer_->lineMarker(line);
  }

  void doScan(Keyword keyword) {
    if (shiftsData(keyword)) pGlobTapData_.iSvfTrstRule = true;
    if (!tapforge::readTapData(keyword, pGlobTapData_, channel_)) {
      tapforge::endByRuleViolation(channel_.report());
    }
    writer_->doDataShift(keyword, pGlobTapData_, channel_.lineRest());
  }

  void doRunTest() {
    pGlobTapData_.iSvfTrstRule = true;
    writer_->beginRunTest();
    tapforge::RunTestNumbers numbers;
    tapforge::RunTestReader reader(channel_);
    while (const auto part = reader.next()) {
      numbers.add(*part);
      writer_->runTestPart(*part);
    }
    tapforge::checkRunTest(numbers, pGlobTapData_.fTckFreq, channel_.report());
    writer_->endRunTest();
    writer_->writeStatement(channel_.lineRest());
  }

  // Every path starts from an unknown state: mode 0 keeps none between
  // statements, so a path may begin anywhere.
  void doState() {
    writer_->beginState();
    tapforge::StatePathReader pStatePath(TapState::unknown, channel_);
    while (const auto step = pStatePath.next()) writer_->pathState(step->asWritten);
    writer_->endState();
    writer_->writeStatement(channel_.lineRest());
  }

  void doEndState(ScanRegister which) {
    writer_->endStateStatement(which, tapforge::readEndState(channel_));
    writer_->writeStatement(channel_.lineRest());
  }

  void doFrequency() {
    pGlobTapData_.fTckFreq = tapforge::readFrequency(channel_);
    writer_->frequency(pGlobTapData_.fTckFreq);
    writer_->writeStatement(channel_.lineRest());
  }

  void doTrst() {
    const tapforge::Trst trst =
        tapforge::readTrst(pGlobTapData_.iTrstMode, pGlobTapData_.iSvfTrstRule, channel_);
    pGlobTapData_.iTrstMode = trst.mode;
    writer_->trst(trst.asWritten);
    writer_->writeStatement(channel_.lineRest());
  }

  // Parallel I/O is checked and written in no form.
  void doPioMap() { pGlobTapData_.pPioMap = tapforge::readPioMap(channel_); }
  void doPio() { tapforge::readPio(pGlobTapData_.pPioMap, channel_); }

 private:
  const ScriptVars& vars_;
  std::unique_ptr<ScriptWriter> writer_;
  FileChannel channel_;
  CTapObj pGlobTapData_;
};

}  // namespace

bool processSVF(const ScriptVars& vars, tapforge::InputFile& input, OutputFile& output,
                Reporter& report) {
  return ScriptLoop(vars, input, output, report).processSVF();
}

}  // namespace progmode_svf2tapbus

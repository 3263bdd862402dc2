#include "script/script_mode.h"

#include <optional>

#include "scan/exact.h"
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
        rules_(vars.exact ? exactRules() : kSyntaxRules),
        channel_(input, rules_, report, writer_.get()) {
    if (!vars_.exact) return;
    exact_.emplace(vars_.iGlobOutFormat ? "the Tcl form" : "", vars_.lGlobTckFreq, pGlobTapData_,
                   channel_);
    pGlobTapData_.compareExactly();
  }

  bool processSVF() {
    bool allKnown = true;
    while (channel_.lexKeyword()) {
      channel_.beginStatement();
      markLine();
      allKnown = doStatement(channel_, *this) && allKnown;
      channel_.endStatement();
    }
    if (exact_) exact_->endOfSource();
    return allKnown;
  }

  void doScan(Keyword keyword) {
    if (shiftsData(keyword)) pGlobTapData_.iSvfTrstRule = true;
    if (!readTapData(keyword, pGlobTapData_, channel_)) {
      endByRuleViolation(channel_.report());
    }
    if (exact_ && shiftsData(keyword)) exact_->scan(registerOf(keyword));
    writer_->doDataShift(keyword, pGlobTapData_, channel_.lineRest());
  }

  void doRunTest() {
    pGlobTapData_.iSvfTrstRule = true;
    writer_->beginRunTest();
    RunTestNumbers numbers;
    readRunTest(channel_, [&](const RunTestPart& part) {
      numbers.add(part);
      if (exact_) return exactPart(part);
      writer_->runTestPart(part);
    });
    if (exact_) {
      const std::int64_t clocks = exact_->endRunTest();
      if (writer_->waitsInClocks()) {
        return writer_->exactWait(pGlobTapData_.iRunState, pGlobTapData_.iRunEndState, clocks);
      }
    } else {
      checkRunTest(numbers, pGlobTapData_.fTckFreq, channel_.report());
    }
    writer_->endRunTest();
    writer_->writeStatement(channel_.lineRest());
  }

  // Every path starts from an unknown state: mode 0 keeps none between statements, so a
  // path may begin anywhere, but under -exact.
  void doState() {
    writer_->beginState();
    pGlobTapData_.iCurState =
        readStatePath(exact_ ? pGlobTapData_.iCurState : TapState::unknown, channel_,
                      [&](const PathStep& step) { writer_->pathState(step.asWritten); });
    writer_->endState();
    writer_->writeStatement(channel_.lineRest());
  }

  void doEndState(ScanRegister which) {
    const TapState state = readEndState(channel_);
    pGlobTapData_.endStateOf(which) = state;
    writer_->endStateStatement(which, state);
    writer_->writeStatement(channel_.lineRest());
  }

  void doFrequency() {
    const Frequency frequency = readFrequency(channel_);
    pGlobTapData_.fTckFreq = frequency.hertz;
    if (exact_) exact_->frequency(frequency);
    writer_->frequency(frequency);
    writer_->writeStatement(channel_.lineRest());
  }

  void doTrst() {
    const Trst trst = readTrst(pGlobTapData_.iTrstMode, pGlobTapData_.iSvfTrstRule, channel_);
    pGlobTapData_.iTrstMode = trst.mode;
    if (exact_) exact_->resetLine(trst.mode);
    writer_->trst(trst.asWritten);
    writer_->writeStatement(channel_.lineRest());
  }

  // Parallel I/O is checked, and written only under -exact.
  void doPioMap() {
    std::string asWritten;
    pGlobTapData_.pPioMap = readPioMap(channel_, asWritten);
    writeParallelIo("PIOMAP", asWritten);
  }
  void doPio() {
    std::string asWritten;
    readPio(pGlobTapData_.pPioMap, channel_, asWritten);
    writeParallelIo("PIO", asWritten);
  }

 private:
  static SyntaxRules exactRules() {
    SyntaxRules rules = kSyntaxRules;
    rules.exact = true;
    return rules;
  }

  void exactPart(const RunTestPart& part) {
    exact_->runTestPart(part);
    if (!writer_->waitsInClocks()) writer_->exactPart(part, channel_.numberText());
  }

  void writeParallelIo(std::string_view keyword, std::string_view asWritten) {
    if (!exact_) return;
    exact_->parallelIo();
    writer_->parallelIo(keyword, asWritten);
  }

  // Marks every lGlobPrintLine-th line.
  void markLine() {
    if (vars_.lGlobPrintLine <= 0) return;
    const std::int64_t line = exact_ ? channel_.statementLine() : channel_.lineNumber();
    if (line % vars_.lGlobPrintLine == 0) writer_->lineMarker(line);
  }

  const ScriptVars& vars_;
  std::unique_ptr<ScriptWriter> writer_;
  const SyntaxRules rules_;
  FileChannel channel_;
  CTapObj pGlobTapData_;
  std::optional<ExactRules> exact_;
};

}  // namespace

bool processSVF(const ScriptVars& vars, InputFile& input, OutputFile& output, Reporter& report) {
  return ScriptLoop(vars, input, output, report).processSVF();
}

}  // namespace tapforge::progmode_svf2tapbus

#include "vector/ksvf_mode.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "io/text.h"
#include "scan/exact.h"
#include "scan/scan_statement.h"
#include "svf/numbers.h"
#include "svf/runtest.h"
#include "svf/state_statements.h"
#include "vector/ksvf_moves.h"
#include "vector/ksvf_scans.h"

namespace tapforge::progmode_svf2ksvf {
namespace {

/// Hands what the parsers read to the writers. What it adds is the order: when
/// a pending scan is written, where the source comments of -kprintsrc go, and which
/// end state waits for the RUNTEST after it.
class KsvfLoop final : private CommentSink {
 public:
  KsvfLoop(const KsvfVars& vars, InputFile& input, OutputFile& output, OutputFile* listing,
           Reporter& report)
      : vars_(vars),
        report_(report),
        rules_(vars.exact ? exactRules() : kSyntaxRules),
        channel_(input, rules_, report, this),
        commands_(output, listing, report),
        scans_(vars, commands_, pGlobTapData_, report),
        moves_(vars, commands_) {
    if (vars_.iOptPrintSrc >= 2) channel_.keepSrcEcho(vars_.g_lMaxLinesToCopy);
    if (!vars_.exact) return;
    exact_.emplace("KSVF", vars_.lGlobTckFreq, pGlobTapData_, channel_);
    pGlobTapData_.compareExactly();
  }

  bool processSVF() {
    commands_.write(Command::KREPEAT, {vars_.lKrepeatVal});
    if (vars_.iOptPrintSrc >= 1) {
      commands_.writeComment(std::string_view(vars_.g_csVerStr).substr(0, FileChannel::kMaxEcho));
    }
    bool allKnown = true;
    for (channel_.resetSrcLineBuf(); channel_.lexKeyword(); channel_.resetSrcLineBuf()) {
      channel_.beginStatement();
      allKnown = doStatement(channel_, *this) && allKnown;
      channel_.endStatement();
    }
    scans_.writePending(StaleCount::cancel);
    commands_.write(Command::KCOMPLETE);
    if (exact_) exact_->endOfSource();
    return allKnown;
  }

  void doScan(Keyword keyword) {
    scans_.writeOverwritten(keyword);
    if (shiftsData(keyword)) pGlobTapData_.iSvfTrstRule = true;
    const bool accepted = readTapData(keyword, pGlobTapData_, channel_);
    writeSvfSrc();
    if (!accepted) endByRuleViolation(report_);
    if (keyword == Keyword::sdr) pGlobTapData_.iCurState = pGlobTapData_.iEndDrState;
    if (keyword == Keyword::sir) pGlobTapData_.iCurState = pGlobTapData_.iEndIrState;
    if (exact_ && shiftsData(keyword)) checkExactScan(registerOf(keyword));
    scans_.doDataShift(keyword);
    // An SDR leaves the flag set: the count of a RUNTEST also applies to the first
    // SDR after it.
    if (keyword != Keyword::sdr) scans_.setRunTestFlag(false);
  }

  void doState() {
    scans_.writePending(StaleCount::cancel);
    const TapState before = pGlobTapData_.iCurState;
    const bool inPause = before == TapState::drpause || before == TapState::irpause;
    bool first = true;
    bool held = false;  // a pause state named again, first: SVF leaves it unless a path follows
    pGlobTapData_.iCurState = readStatePath(before, channel_, [&](const PathStep& step) {
      if (std::exchange(held, false)) moves_.addTapTransition(before);
      held = std::exchange(first, false) && exact_ && inPause && step.state == before;
      if (held) return;
      if (step.oneClock) {
        moves_.addTapTransition(step.state);
      } else {
        moves_.doStableState(step.from, step.state);
      }
    });
    if (held) moves_.doStableState(before, before);
    statementDone();
  }

  void doEndState(ScanRegister which) {
    const TapState state = readEndState(channel_);
    pGlobTapData_.endStateOf(which) = state;
    const TapState pause = which == ScanRegister::data ? TapState::drpause : TapState::irpause;
    if (exact_ && state != TapState::idle && state != pause) {
      exact_->refuse("KSVF ends scans only in IDLE and in the pause state of their register");
    }
    const bool beforeRunTest = nextIsRunTest();
    if (beforeRunTest && !vars_.giUseKwait) {
      g_iDelayedEndxR_ = true;
      g_iStoredEndMode_ = which;
      g_iStoredEndTap_ = state;
    } else {
      writeEndState(which, state);
    }
    statementDone();
  }

  void doRunTest() {
    pGlobTapData_.iSvfTrstRule = true;
    scans_.setRunTestFlag(true);
    if (vars_.giUseKwait) scans_.writePending(StaleCount::keep);
    if (exact_) return writeExactWait();
    std::int64_t count = readRunCount();
    // RUNTESTs in a row are one wait.
    while (!vars_.giUseKwait && nextIsRunTest()) {
      channel_.lex();
      count = saturatedSum(count, readRunCount());
    }
    count = std::max(count, vars_.lRunMin);
    if (vars_.giUseKwait) {
      moves_.wait(pGlobTapData_.iRunState, pGlobTapData_.iRunEndState, count);
    } else {
      if (scans_.writeRunCount(count) && vars_.iMultipleRunTest) scans_.writeEmptyScan();
      scans_.writePending(StaleCount::keep);
    }
    writeSvfSrc();
    pGlobTapData_.iCurState = pGlobTapData_.iRunEndState;
    if (g_iDelayedEndxR_) {
      writeEndState(g_iStoredEndMode_, g_iStoredEndTap_);
      scans_.setRunTestFlag(false);
      g_iDelayedEndxR_ = false;
    }
  }

  void doFrequency() {
    scans_.writePending(StaleCount::cancel);
    const Frequency frequency = readFrequency(channel_);
    pGlobTapData_.fTckFreq = frequency.hertz;
    if (exact_) exact_->frequency(frequency);
    statementDone();
  }

  void doTrst() {
    scans_.writePending(StaleCount::cancel);
    pGlobTapData_.iTrstMode =
        readTrst(pGlobTapData_.iTrstMode, pGlobTapData_.iSvfTrstRule, channel_).mode;
    if (exact_) exact_->resetLine(pGlobTapData_.iTrstMode);
    statementDone();
  }

  void doPioMap() {
    scans_.writePending(StaleCount::cancel);
    std::string asWritten;
    pGlobTapData_.pPioMap = readPioMap(channel_, asWritten);
    if (exact_) exact_->parallelIo();
    statementDone();
  }

  void doPio() {
    scans_.writePending(StaleCount::cancel);
    std::string asWritten;
    readPio(pGlobTapData_.pPioMap, channel_, asWritten);
    if (exact_) exact_->parallelIo();
    statementDone();
  }

 private:
  // Comments of the source go out with the text before them, which is then not
  // repeated with the statement.
  void commentText(std::string_view /*piece*/) override {}
  void commentEnd() override {
    writeSvfSrc();
    channel_.resetSrcLineBuf();
  }

  void writeSvfSrc() {
    if (vars_.iOptPrintSrc >= 2) commands_.writeComment(channel_.srcEcho());
  }

  // After all statements but scans and RUNTESTs.
  void statementDone() {
    writeSvfSrc();
    scans_.setRunTestFlag(false);
  }

  // Looks at the next keyword and leaves it for the loop.
  bool nextIsRunTest() {
    if (!channel_.lexKeyword()) return false;
    channel_.unlex();
    return channel_.is("runtest");
  }

  void writeEndState(ScanRegister which, TapState state) {
    scans_.writePending(StaleCount::cancel);
    moves_.endState(which, state);
  }

  // Reads one RUNTEST, stores its states and returns its count in TCKs.
  std::int64_t readRunCount() {
    RunTestNumbers numbers;
    readRunTest(channel_, [&](const RunTestPart& part) {
      numbers.add(part);
      using Kind = RunTestPart::Kind;
      if (part.kind == Kind::runState) pGlobTapData_.iRunState = part.state;
      if (part.kind == Kind::endState) pGlobTapData_.iRunEndState = part.state;
      if (part.kind == Kind::time) numbers.fRunCount = countOfTime(part);
    });
    checkRunTest(numbers, pGlobTapData_.fTckFreq, report_);
    return truncated(numbers.fRunCount);
  }

  float countOfTime(const RunTestPart& part) {
    const std::int64_t frequency = vars_.lGlobTckFreq;
    if (frequency == -1) {
      report_.warning("Use tck_freq option to convert time delay into equivalent TCK count");
      report_.fatal("Delay must be in terms of TCK count", Where::nowhere);
    }
    report_.warning(
        concat("Converting delay to equivalent TCK count using tck_freq = ", frequency, " Hz"),
        Where::nowhere);
    const Number& time = part.number;
    const bool whole = time.kind == Number::Kind::integer;
    const std::int64_t clocks = whole ? saturatedProduct(time.integer, frequency)
                                      : truncated(time.real * static_cast<float>(frequency));
    report_.warning(concat("=> ", whole ? std::to_string(time.integer) : std::to_string(time.real),
                           " ", channel_.tokenLower(), " to ", clocks, " TCKs"));
    return static_cast<float>(clocks);
  }

  static SyntaxRules exactRules() {
    SyntaxRules rules = kSyntaxRules;
    rules.exact = true;
    rules.lineEnds = LineEnds::lineFeedOrReturn;
    rules.timesBecomeCounts = false;
    rules.endOfFileHasPosition = true;
    return rules;
  }

  // Scans that KSVF cannot say, or cannot compare, at their own place: they are written
  // one statement late.
  void checkExactScan(ScanRegister which) {
    exact_->scan(which);
    RegisterScan& scan = pGlobTapData_.scanOf(which);
    const std::int64_t length = compositeLength(scan, report_);
    const bool compares = scan.compares() && !vars_.iSkipTdoTest;
    if (which == ScanRegister::instruction) {
      if (length > 0xffff) exact_->refuse("KSVF has no instruction scan above 65535 bits");
      if (compares) report_.warning("KSVF does not compare the TDO of an SIR");
      return;
    }
    if (length > 0xffffffff) exact_->refuse("KSVF has no data scan above 2^32-1 bits");
    if (!vars_.iFpgaFormat || length <= vars_.lFpgaRecSize || !compares) return;
    const CompositeScan mask(scan, ScanValue::mask, length);
    for (std::int64_t low = 0; low < length; low += kChunkBits) {
      if (mask(low) != lowBits(std::min(length - low, kChunkBits))) {
        exact_->refuse("a record compares all bits or none: use -s or a longer -rlen");
      }
    }
  }

  // A KWAIT, or several for more clocks than one can hold.
  void writeExactWait() {
    readRunTest(channel_, [this](const RunTestPart& part) { exact_->runTestPart(part); });
    constexpr std::int64_t kMost = 0xffffffff;
    const TapState state = pGlobTapData_.iRunState;
    std::int64_t clocks = exact_->endRunTest();
    for (; clocks > kMost; clocks -= kMost) moves_.wait(state, state, kMost);
    moves_.wait(state, pGlobTapData_.iRunEndState, clocks);
    writeSvfSrc();
  }

  const KsvfVars& vars_;
  Reporter& report_;
  const SyntaxRules rules_;
  FileChannel channel_;
  CTapObj pGlobTapData_;
  std::optional<ExactRules> exact_;
  CommandWriter commands_;
  KsvfScans scans_;
  KsvfMoves moves_;

  // An ENDIR or ENDDR whose command goes out after the RUNTEST that follows it.
  bool g_iDelayedEndxR_ = false;
  ScanRegister g_iStoredEndMode_ = ScanRegister::instruction;
  TapState g_iStoredEndTap_ = TapState::idle;
};

}  // namespace

bool processSVF(const KsvfVars& vars, InputFile& input, OutputFile& output, OutputFile* listing,
                Reporter& report) {
  return KsvfLoop(vars, input, output, listing, report).processSVF();
}

}  // namespace tapforge::progmode_svf2ksvf

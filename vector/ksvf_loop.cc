#include "vector/ksvf_loop.h"

#include <utility>

#include "scan/scan_statement.h"
#include "svf/clock_statements.h"
#include "svf/pio.h"
#include "svf/statements.h"
#include "vector/ksvf_traits.h"
#include "vector/move_writer.h"
#include "vector/scan_writer.h"

namespace progmode_svf2ksvf {
namespace {

/// The loop over the statements. What it adds to their handlers is the order:
/// which pending scan goes out when, and where the comments of -kprintsrc
/// stand.
class StatementLoop final : private CommentSink {
 public:
  StatementLoop(const KsvfVars& vars, CharReader& source, OutputFile& output, OutputFile* listing,
                Reporter& report)
      : vars_(vars),
        source_(source),
        run_(source, report),
        bytes_(vars, output, listing, report),
        scans_(vars, bytes_, run_.tap, report),
        moves_(vars, run_, bytes_, scans_) {
    source_.setCommentSink(this);
    if (vars_.iOptPrintSrc >= 2) source_.keepEcho(vars_.g_lMaxLinesToCopy);
  }

  bool processSVF() {
    bytes_.ksvfHeader();
    if (vars_.iOptPrintSrc >= 1) {
      bytes_.writeComment(std::string_view(vars_.g_csVerStr).substr(0, CharReader::kMaxEcho));
    }
    bool allKnown = true;
    for (;;) {
      source_.resetSrcLineBuf();
      if (!run_.lexer.lexKeyword()) break;
      const Keyword keyword = tapforge::keywordOf(run_.lexer);
      if (keyword == Keyword::unknown) {
        allKnown = tapforge::skipUnknown(run_) && allKnown;
      } else {
        doStatement(keyword);
      }
    }
    scans_.writePending(RunCount::reset);
    bytes_.ksvfTrailer();
    return allKnown;
  }

 private:
  void commentRead() override { bytes_.writeSvfSrc(source_, true); }

  void doStatement(Keyword keyword) {
    switch (keyword) {
      case Keyword::hir:
      case Keyword::hdr:
      case Keyword::tir:
      case Keyword::tdr:
      case Keyword::sir:
      case Keyword::sdr:
        doScan(keyword);
        return;
      case Keyword::runtest:
        doRunTest();
        return;
      case Keyword::endir:
        moves_.doEndState(ScanRegister::instruction);
        break;
      case Keyword::enddr:
        moves_.doEndState(ScanRegister::data);
        break;
      case Keyword::state:
        moves_.doState();
        break;
      case Keyword::frequency:
        scans_.writePending(RunCount::reset);
        tapforge::readFrequency(run_);
        break;
      case Keyword::trst:
        scans_.writePending(RunCount::reset);
        tapforge::readTrstMode(run_);
        tapforge::finishTrst(run_);
        break;
      case Keyword::piomap:
        scans_.writePending(RunCount::reset);
        tapforge::readPioMap(run_);
        break;
      case Keyword::pio:
        scans_.writePending(RunCount::reset);
        tapforge::readPio(run_);
        break;
      case Keyword::unknown:
        break;
    }
    bytes_.writeSvfSrc(source_, false);
    scans_.setRunTestFlag(false);
  }

  void doRunTest() {
    run_.tap.iSvfTrstRule = true;
    scans_.setRunTestFlag(true);
    moves_.doRunTest();
    bytes_.writeSvfSrc(source_, false);
    run_.tap.iCurState = run_.tap.iRunEndState;
    if (moves_.writeDelayedEndState()) scans_.setRunTestFlag(false);
  }

  void doScan(Keyword scan) {
    writeEarlierScans(scan);
    const bool isScan = scan == Keyword::sir || scan == Keyword::sdr;
    if (isScan) run_.tap.iSvfTrstRule = true;
    tapforge::CTapPattern& pattern = tapforge::patternOf(scan, run_.tap);
    const tapforge::ScanData data = tapforge::readTapData(isScan, pattern, run_);
    bytes_.writeSvfSrc(source_, false);
    tapforge::storeScan(pattern, data, run_);
    if (scan == Keyword::sdr) run_.tap.iCurState = run_.tap.iEndDrState;
    if (scan == Keyword::sir) run_.tap.iCurState = run_.tap.iEndIrState;
    scans_.doDataShift(scan);
    // After an SDR it stands: a count before a run of SDRs counts for them all.
    if (scan != Keyword::sdr) scans_.setRunTestFlag(false);
  }

  // A scan statement makes its own kind's pending scan go out before it is
  // read; a header or trailer changes what both kinds would write.
  void writeEarlierScans(Keyword scan) {
    const bool wasPending = scan == Keyword::sdr ? scans_.sdrPending() : scans_.sirPending();
    if (scan == Keyword::sdr) {
      scans_.writeSdr(RunCount::reset);
    } else if (scan == Keyword::sir) {
      scans_.writeSir(RunCount::reset);
    } else {
      scans_.writePending(RunCount::reset);
      scans_.setRunTestFlag(false);
      return;
    }
    if (wasPending) scans_.setRunTestFlag(false);
  }

  const KsvfVars& vars_;
  CharReader& source_;
  Run run_;
  ByteWriter bytes_;
  ScanWriter scans_;
  MoveWriter moves_;
};

}  // namespace

bool processSVF(const KsvfVars& vars, tapforge::InputFile& input, OutputFile& output,
                OutputFile* listing, Reporter& report) {
  CharReader source(std::move(input.file), input.name, kSyntaxRules, report);
  return StatementLoop(vars, source, output, listing, report).processSVF();
}

}  // namespace progmode_svf2ksvf

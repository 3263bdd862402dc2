#include "script/script_writer.h"

#include <algorithm>

#include "io/text.h"
#include "scan/scan_statement.h"
#include "svf/numbers.h"

namespace tapforge::progmode_svf2tapbus {

using Kind = RunTestPart::Kind;

void ScriptWriter::commentText(std::string_view piece) {
  if (!inComment_) output_.write(words_.comment.view());
  inComment_ = true;
  output_.write(piece);
}

void ScriptWriter::commentEnd() {
  inComment_ = false;
  output_.put('\n');
}

void ScriptWriter::lineMarker(std::int64_t line) {
  output_.write(concat("puts \"--- line ", line, "\"\n"));
}

void ScriptWriter::writeStatement(LineRest rest) {
  output_.write(sBufStatement_.view());
  writeSeparator(rest);
}

void ScriptWriter::writeLine() {
  output_.write(sBufStatement_.view());
  output_.put('\n');
}

void ScriptWriter::writeBlanks(std::size_t count) {
  output_.write(std::string(std::max<std::size_t>(count, 1), ' '));
}

void ScriptWriter::pathState(std::string_view asWritten) {
  sBufStatement_ += ' ';
  sBufStatement_ += asWritten;
}

void ScriptWriter::frequency(const Frequency& frequency) {
  sBufStatement_ = words_.remark;
  sBufStatement_ += "FREQUENCY";
  if (vars_.exact && !frequency.asWritten.empty()) {
    sBufStatement_ += concat(" ", frequency.asWritten, " ", frequency.unit);
  } else if (frequency.hertz > 0) {
    sBufStatement_ += concat(" ", truncated(frequency.hertz), " Hz");
  }
  sBufStatement_ += " ;";
}

void ScriptWriter::parallelIo(std::string_view keyword, std::string_view asWritten) {
  output_.write(concat(keyword, " (", asWritten, ") ;\n"));
}

void ScriptWriter::trst(std::string_view modeAsWritten) {
  sBufStatement_ = words_.remark;
  sBufStatement_ += concat("TRST ", modeAsWritten, " ;");
}

void ScriptWriter::runTestPart(const RunTestPart& part) {
  switch (part.kind) {
    case Kind::runState:
    case Kind::endState:
      sBufStatement_ += part.kind == Kind::runState ? words_.runState : words_.endState;
      sBufStatement_ += getTapStateName(part.state);
      break;
    case Kind::count:
      runCount(truncated(part.number.asFloat()), part.asWritten);
      break;
    case Kind::minTime:
      minTime(part.number.asFloat());
      break;
    case Kind::maxTime:
      maxTime(part.number.asFloat());
      break;
    case Kind::time:
      assert(false);  // times stay times in mode 0
  }
}

void ScriptWriter::exactPart(const RunTestPart& part, std::string_view number) {
  if (part.kind == Kind::runState || part.kind == Kind::endState) return runTestPart(part);
  const std::string_view lead = part.kind == Kind::maxTime ? " MAXIMUM " : " ";
  sBufStatement_ += concat(lead, number, " ", part.asWritten);
}

void ScriptWriter::doDataShift(Keyword keyword, CTapObj& tap, LineRest rest) {
  if (shiftsData(keyword)) {
    writeScan(keyword, tap.scanOf(registerOf(keyword)), rest);
    return;
  }
  constexpr std::string_view kNote = "!==* Header/Trailer info combined with SIR/SDR\n!";
  writeHeaderTrailer(nameOf(keyword), tap.patternOf(keyword), vars_.iSvfSyntaxCheck ? "" : kNote,
                     rest);
}

void ScriptWriter::writeScan(Keyword keyword, RegisterScan& scan, LineRest rest) {
  const std::int64_t length =
      vars_.iSvfSyntaxCheck ? scan.data().lLength() : compositeLength(scan, report_);
  // A scan of short values is written into one reserved stretch of the output.
  char* out = output_.reserve(kScanText);
  out = words_.scan[keyword == Keyword::sdr ? 1 : 0].copyTo(out);
  *out++ = ' ';
  out = putDecimal(out, length);
  if (vars_.iSvfSyntaxCheck) {
    output_.advance(out);
    printDataAndMask({}, scan.data(), !vars_.iSkipTdoTest);
    out = output_.reserve(kScanText);
  } else {
    out = combineHeaderDataTrailer(out, keyword, scan, length);
  }
  output_.advance(words_.scanEnd.copyTo(out));
  writeSeparator(rest);
  if (vars_.iInsertWait > 0) output_.write(concat("RUNTEST ", vars_.iInsertWait, " TCK;\n"));
}

// Whether a merged scan has an SMASK: one without would inherit that of an earlier one.
bool ScriptWriter::exactSmask(Keyword keyword, const RegisterScan& scan, std::int64_t length) {
  std::int64_t& inForce = smaskLength_[keyword == Keyword::sdr ? 1 : 0];
  inForce = scan.data().pSmask() != nullptr || inForce == length ? length : 0;
  return inForce != 0;
}

char* ScriptWriter::combineHeaderDataTrailer(char* out, Keyword keyword, const RegisterScan& scan,
                                             std::int64_t length) {
  constexpr ShortText kTdi = "\n    TDI (";
  constexpr ShortText kSmask = ")\n  SMASK (";
  constexpr ShortText kTdo = ")\n    TDO (";
  constexpr ShortText kMask = ")\n   MASK (";
  out = consolidateData(kTdi.copyTo(out), scan, ScanValue::tdi, length);
  if (vars_.exact ? exactSmask(keyword, scan, length) : scan.data().pSmask() != nullptr) {
    out = consolidateData(kSmask.copyTo(out), scan, ScanValue::smask, length);
  }
  if (!vars_.iSkipTdoTest && scan.compares()) {
    out = consolidateData(kTdo.copyTo(out), scan, ScanValue::tdo, length);
    out = consolidateData(kMask.copyTo(out), scan, ScanValue::mask, length);
  }
  *out++ = ')';
  return out;
}

// Writes the digits of a value to `out` and returns where to go on; those of a long
// value go out in lines, each reserved for itself.
inline char* ScriptWriter::consolidateData(char* out, const RegisterScan& scan, ScanValue value,
                                           std::int64_t length) {
  const std::int64_t digits = digitsOf(length);
  if (length <= kChunkBits) {
    return putDigits(out, ShortScan{scan.shortBits(value)}, 0, digits, HexCase::lower);
  }
  constexpr std::int64_t kWriteProgress = 200000;  // digits written so far
  static_assert(kWriteProgress % kDigitsPerLine == 0, "progress is shown between two lines");
  output_.advance(out);
  // The digits of the lines after the first are right under those of the first.
  writeHexLines(output_, CompositeScan(scan, value, length), digits, HexCase::lower, "\n         ",
                [this](std::int64_t first) {
                  if (first == 0 || first % kWriteProgress != 0) return;
                  report_.statusMsg(concat("*** Writing hex char #", paddedDecimal(first, 8)),
                                    StatusStyle::rewind);
                });
  if (digits > kWriteProgress) report_.statusMsg("", StatusStyle::wipe);
  return output_.reserve(kScanText);
}

void ScriptWriter::printDataAndMask(std::string_view keyword, const CTapPattern& pattern,
                                    bool withTdo) {
  if (pattern.pTdi() == nullptr) report_.fatal("Null Ptr [TDI=NULL]", Where::nowhere);
  const std::int64_t length = pattern.lLength();
  printValue({keyword, ScanValue::tdi, {pattern.pTdi()}, pattern.pSmask(), length});
  if (!withTdo || pattern.pTdo() == nullptr) return;
  printValue({keyword, ScanValue::tdo, {pattern.pTdo()}, pattern.pMask(), length});
  // A mask is shown only with expected bits.
  if (pattern.pMask() != nullptr || vars_.exact) {
    printValue({keyword, ScanValue::mask, {pattern.pMask()}, nullptr, length});
  }
}

}  // namespace tapforge::progmode_svf2tapbus

#include "script/scan_writer.h"

#include <algorithm>

#include "scan/hex_output.h"
#include "shell/io/text.h"

namespace progmode_svf2tapbus {
namespace {

using tapforge::concat;
using tapforge::HexCase;
using tapforge::ScanValue;
using tapforge::StatusStyle;
using namespace std::string_view_literals;

constexpr long kDigitsPerLine = 64;
constexpr long kMergedProgress = 200000;  // digits; a multiple of a line
constexpr long kTclProgress = 10000;      // digits

std::string_view nameOf(Keyword scan) {
  switch (scan) {
    case Keyword::hir:
      return "hir";
    case Keyword::hdr:
      return "hdr";
    case Keyword::tir:
      return "tir";
    case Keyword::tdr:
      return "tdr";
    case Keyword::sir:
      return "ir";
    default:
      return "dr";
  }
}

template <typename Bits, typename EachLine>
void writeLines(OutputFile& output, const Bits& bits, long digits, HexCase hexCase,
                std::string_view lineBreak, const EachLine& eachLine) {
  for (long first = 0; first < digits; first += kDigitsPerLine) {
    eachLine(first);
    if (first != 0) output.write(lineBreak);
    tapforge::writeDigits(output, bits, digits - first - 1,
                          std::min(kDigitsPerLine, digits - first), hexCase);
  }
}

}  // namespace

void ScanWriter::doDataShift(Keyword scan, CTapObj& tap) {
  if (scan == Keyword::sir || scan == Keyword::sdr) {
    writeScan(scan, tapforge::registerOf(scan, tap));
  } else {
    writeHeaderTrailer(scan, tapforge::patternOf(scan, tap));
  }
}

void ScanWriter::writeScan(Keyword scan, const RegisterPatterns& patterns) {
  const bool isData = tapforge::isDataScan(scan);
  const std::string_view command =
      isTcl() ? (isData ? "scan_dr_tapbus "sv : "scan_ir_tapbus "sv) : (isData ? "SDR"sv : "SIR"sv);
  if (vars_.iSvfSyntaxCheck) {
    output_.write(command);
    output_.put(' ');
    output_.writeDecimal(patterns.data.length());
    printDataAndMask(patterns.data, false, scan);
    if (!vars_.iSkipTdoTest) printDataAndMask(patterns.data, true, scan);
  } else {
    const long length = tapforge::compositeLength(patterns, report_);
    output_.write(command);
    combineHeaderDataTrailer(patterns, length);
  }
  output_.write(isTcl() ? "\n"sv : " ;"sv);
  script_.writeSeparator();
  if (vars_.iInsertWait > 0) output_.write(concat("RUNTEST ", vars_.iInsertWait, " TCK;\n"));
}

void ScanWriter::combineHeaderDataTrailer(const RegisterPatterns& patterns, long length) {
  output_.put(' ');
  output_.writeDecimal(length);
  output_.write("\n    TDI (");
  consolidateData({patterns, ScanValue::tdi, length});
  if (patterns.data[ScanValue::smask] != nullptr) {
    output_.write(")\n  SMASK (");
    consolidateData({patterns, ScanValue::smask, length});
  }
  if (!vars_.iSkipTdoTest && patterns.data[ScanValue::tdo] != nullptr) {
    output_.write(")\n    TDO (");
    consolidateData({patterns, ScanValue::tdo, length});
    output_.write(")\n   MASK (");
    consolidateData({patterns, ScanValue::mask, length});
  }
  output_.put(')');
}

void ScanWriter::consolidateData(const CompositeScan& scan) {
  // The digits of a line after the first stand under those of the first.
  constexpr std::string_view kLineBreak = "\n         ";
  const auto bits = [&scan](long low) { return scan.bits(low); };
  const long digits = scan.digits();
  if (digits <= kDigitsPerLine) {
    tapforge::writeDigits(output_, bits, digits - 1, digits, HexCase::lower);
    return;
  }
  writeLines(output_, bits, digits, HexCase::lower, kLineBreak, [this](long first) {
    if (first == 0 || first % kMergedProgress != 0) return;
    report_.statusMsg(concat("*** Writing hex char #", tapforge::paddedDecimal(first, 8)),
                      StatusStyle::rewind);
  });
  if (digits > kMergedProgress) report_.statusMsg("", StatusStyle::wipe);
}

void ScanWriter::writeHeaderTrailer(Keyword scan, const CTapPattern& pattern) {
  constexpr std::string_view kCombined = "!==* Header/Trailer info combined with SIR/SDR\n!";
  const bool comment = !vars_.iSvfSyntaxCheck;
  if (isTcl()) {
    output_.write(
        concat("set_property ", nameOf(scan), "_length {", pattern.length(), "} $current_tapbus"));
    script_.writeSeparator();
  } else {
    // The text after "!" makes the statement's own first line a comment too.
    if (comment) output_.write(kCombined);
    output_.write(concat(nameOf(scan), " ", pattern.length()));
  }
  if (pattern.length() > 0) {
    printDataAndMask(pattern, false, scan);
    printDataAndMask(pattern, true, scan);
  }
  if (isTcl() && comment) output_.write(kCombined);
  output_.write(isTcl() ? "\n"sv : " ;"sv);
  script_.writeSeparator();
}

void ScanWriter::printDataAndMask(const CTapPattern& pattern, bool isTdo, Keyword scan) {
  const bool isScan = scan == Keyword::sir || scan == Keyword::sdr;
  const CTapField* value = isTdo ? pattern[ScanValue::tdo] : pattern[ScanValue::tdi];
  const CTapField* mask = isTdo ? pattern[ScanValue::mask] : pattern[ScanValue::smask];
  if (value == nullptr && isTdo) return;
  report_.nullPtrChk(value != nullptr, "TDI=NULL");

  const std::string_view end = !isTcl() ? ")" : isScan ? "" : "} $current_tapbus";
  if (!isTcl()) {
    output_.write(isTdo ? "\n!   TDO (" : "\n!   TDI (");
  } else if (isScan) {
    output_.write(isTdo ? " -tdo " : " -tdi ");
  } else {
    output_.write(concat("\nset_property ", nameOf(scan), isTdo ? "_TDO {" : "_TDI {"));
  }
  printValue(*value, mask, pattern.length(), "Process data char ");
  output_.write(end);
  // A mask is a value of its own only beside expected bits.
  if (!isTdo || mask == nullptr) return;

  if (!isTcl()) {
    output_.write("\n!  MASK (");
  } else if (isScan) {
    output_.write(" -mask ");
  } else {
    output_.write(concat("\nset_property ", nameOf(scan), "_TDO_mask {"));
  }
  printValue(*mask, nullptr, pattern.length(), "Process mask data char ");
  output_.write(end);
}

// The digits of a value, without what its mask leaves out.
void ScanWriter::printValue(const CTapField& data, const CTapField* mask, long length,
                            std::string_view progress) {
  const CompositeScan value(data, length);
  const CompositeScan kept(mask != nullptr ? *mask : data, length);
  const auto bits = [&value, &kept](long low) { return value.bits(low) & kept.bits(low); };
  if (!isTcl()) {
    writeLines(output_, bits, value.digits(), HexCase::upper, "\n!        ", [](long) {});
    return;
  }
  for (long top = value.digits() - 1; top >= 0;) {
    const long last = top - top % kTclProgress;
    tapforge::writeDigits(output_, bits, top, top - last + 1, HexCase::upper);
    if (report_.wantsStatus()) report_.statusMsg(concat(progress, last), StatusStyle::rewind);
    top = last - 1;
  }
}

}  // namespace progmode_svf2tapbus

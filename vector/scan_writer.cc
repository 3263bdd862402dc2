#include "vector/scan_writer.h"

#include <algorithm>

namespace progmode_svf2ksvf {

using tapforge::ScanValue;
using tapforge::StatusStyle;

void ScanWriter::doDataShift(Keyword scan) {
  writePending(RunCount::reset);
  if (scan == Keyword::sdr) {
    tapforge::compositeLength(tap_.data, report_);
    iSdrFlag_ = true;
  } else if (scan == Keyword::sir) {
    tapforge::compositeLength(tap_.instruction, report_);
    iSirFlag_ = true;
    if (vars_.iInOrder) writeInstruction();
  } else {
    report_.statusMsg("Header/Trailer info combined with SIR/SDR", StatusStyle::newLine);
  }
}

bool ScanWriter::writeRunCount(long count) {
  if (count == lTckRunCount_) return false;
  bytes_.listNumber(Command::KRUNTEST, count, 8, "\n");
  bytes_.commandWith(Command::KRUNTEST, count, 8);
  lTckRunCount_ = count;
  return true;
}

void ScanWriter::cancelRunCount() { writeRunCount(0); }

void ScanWriter::writeEmptyScan() {
  bytes_.list("KSDRSIZE 00000000\nKSDR\n");
  bytes_.commandWith(Command::KSDRSIZE, 0, 8);
  bytes_.command(Command::KSDR);
  lSdrSize_ = 0;
}

VectorBits ScanWriter::shiftedBits(const RegisterPatterns& patterns, long length) const {
  VectorBits bits{{patterns, ScanValue::tdi, length}, {}};
  if (patterns.data[ScanValue::smask] != nullptr) {
    bits.mask.emplace(patterns, ScanValue::smask, length);
  }
  return bits;
}

VectorBits ScanWriter::dataValue(ScanValue value, long length) const {
  return {{tap_.data, value, length}, {}};
}

void ScanWriter::writeInstruction() {
  const long length = tapforge::compositeLength(tap_.instruction, report_);
  // KSVF compares nothing on an instruction scan: its TDO and MASK are dropped.
  const bool isShort = length < 256;
  const Command code = isShort ? Command::KSIR : Command::KSIR2;
  const int digits = isShort ? 2 : 4;
  bytes_.listNumber(code, length, digits, " ");
  bytes_.commandWith(code, length, digits);
  bytes_.bytePrint(shiftedBits(tap_.instruction, length), 0, length);
  bytes_.list("\n");
}

void ScanWriter::writeSir(RunCount runCount) {
  if (!iSirFlag_ || vars_.iInOrder) return;
  if (runCount == RunCount::reset && !iRunTestFlag_) cancelRunCount();
  writeInstruction();
  iSirFlag_ = false;
  // A player of version 2 waits after data scans only.
  if (vars_.iV2Compatibility && lTckRunCount_ != 0) writeEmptyScan();
}

void ScanWriter::writeSdr(RunCount runCount) {
  if (!iSdrFlag_) return;
  const long length = tapforge::compositeLength(tap_.data, report_);
  const bool test = tap_.data.data[ScanValue::tdo] != nullptr && !vars_.iSkipTdoTest;
  const VectorBits tdi = shiftedBits(tap_.data, length);
  if (vars_.iFpgaFormat && length > vars_.lFpgaRecSize) {
    writePartition(tdi, length, test);
  } else {
    writeWholeScan(tdi, length, test, runCount);
  }
  iSdrFlag_ = false;
}

void ScanWriter::writeMask(long length, bool test) {
  if (!test) {
    if (!maskKept_ && length == lSdrSize_) return;
    maskKept_ = false;
    bytes_.command(Command::KTDOMASK);
    bytes_.list("KTDOMASK ");
    bytes_.bytePrintZeros(length);
    bytes_.list("\n");
    return;
  }
  const VectorBits mask = dataValue(ScanValue::mask, length);
  if (isLastMask(mask.value)) return;
  keepMask(mask.value);
  bytes_.command(Command::KTDOMASK);
  bytes_.list("KTDOMASK ");
  bytes_.bytePrint(mask, 0, length);
  bytes_.list("\n");
}

// Compares from the most significant digit on, over the new mask's digits only.
bool ScanWriter::isLastMask(const CompositeScan& mask) const {
  if (!maskKept_ || mask.digits() > pSdrMask_.numChars()) return false;
  const long bits = 4 * mask.digits();
  const long offset = pSdrMask_.length() - bits;
  for (long low = 0; low < bits; low += 64) {
    std::uint64_t differs = mask.bits(low) ^ pSdrMask_.bitsAt(low + offset);
    if (bits - low < 64) differs &= (std::uint64_t{1} << (bits - low)) - 1;
    if (differs != 0) return false;
  }
  return true;
}

void ScanWriter::keepMask(const CompositeScan& mask) {
  const long bits = 4 * mask.digits();
  pSdrMask_.initTapField(bits, report_);
  for (long low = 0; low < bits; low += 64) pSdrMask_.putBits(low, mask.bits(low));
  maskKept_ = true;
}

void ScanWriter::writeWholeScan(const VectorBits& tdi, long length, bool test, RunCount runCount) {
  if (length != lSdrSize_) {
    bytes_.listNumber(Command::KSDRSIZE, length, 8, "\n");
    bytes_.commandWith(Command::KSDRSIZE, length, 8);
  }
  writeMask(length, test);
  lSdrSize_ = length;
  if (runCount == RunCount::reset && !iRunTestFlag_) cancelRunCount();
  const bool withTdo = test || !vars_.iOptUseKSDR;
  bytes_.list(withTdo ? "KSDRTDO " : "KSDR ");
  bytes_.command(withTdo ? Command::KSDRTDO : Command::KSDR);
  bytes_.bytePrint(tdi, 0, length);
  if (withTdo) {
    bytes_.list(" ");
    if (test) {
      bytes_.bytePrint(dataValue(ScanValue::tdo, length), 0, length);
    } else {
      // The zero mask makes the player ignore it.
      bytes_.bytePrintZeros(length);
    }
  }
  bytes_.list("\n");
}

void ScanWriter::writePartition(const VectorBits& tdi, long length, bool test) {
  const long record = vars_.lFpgaRecSize;
  bytes_.listNumber(Command::KSDRSIZE, record, 8, "\n");
  bytes_.commandWith(Command::KSDRSIZE, record, 8);
  lSdrSize_ = record;
  if (tap_.data.data[ScanValue::mask] != nullptr) {
    report_.warning("TDO MASK ignored when partitioning into KSDRTDOB/C/E");
  }
  cancelRunCount();
  const VectorBits tdo = dataValue(ScanValue::tdo, length);
  for (long low = 0; low < length;) {
    const long rest = length - low;
    const bool last = rest <= record;
    if (last && rest < record) {
      // In the listing the lines inside a scan begin with their line end.
      bytes_.list("\n");
      bytes_.listNumber(Command::KSDRSIZE, rest, 8, "");
      bytes_.commandWith(Command::KSDRSIZE, rest, 8);
      lSdrSize_ = rest;
    }
    Command code = test ? Command::KSDRTDOC : Command::KSDRC;
    if (low == 0) code = test ? Command::KSDRTDOB : Command::KSDRB;
    if (last) code = test ? Command::KSDRTDOE : Command::KSDRE;
    if (low != 0) bytes_.list("\n");
    bytes_.list(nameOf(code));
    bytes_.list(" ");
    bytes_.command(code);
    const long count = std::min(rest, record);
    bytes_.bytePrint(tdi, low, count);
    if (test) {
      bytes_.list(" ");
      bytes_.bytePrint(tdo, low, count);
    }
    low += count;
  }
  bytes_.list("\n");
}

}  // namespace progmode_svf2ksvf

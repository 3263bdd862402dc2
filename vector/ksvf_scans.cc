#include "vector/ksvf_scans.h"

#include <algorithm>
#include <optional>

#include "scan/scan_statement.h"

namespace tapforge::progmode_svf2ksvf {
namespace {

// The vectors of one scan. Those of at most 64 bits need nothing set up, which
// halves the work of a short scan.
class ShortVectors {
 public:
  explicit ShortVectors(const RegisterScan& scan) : scan_(scan) {}
  // TDI with the bits outside SMASK as 0.
  ShortScan tdi() const {
    const std::uint64_t bits = scan_.shortBits(ScanValue::tdi);
    return {scan_.data().pSmask() != nullptr ? bits & scan_.shortBits(ScanValue::smask) : bits};
  }
  ShortScan value(ScanValue value) const { return {scan_.shortBits(value)}; }

 private:
  const RegisterScan& scan_;
};

class LongVectors {
 public:
  LongVectors(const RegisterScan& scan, std::int64_t length) : scan_(scan), length_(length) {}

  struct Tdi {
    CompositeScan value;
    std::optional<CompositeScan> smask;
    std::uint64_t operator()(std::int64_t low) const {
      return smask ? value(low) & (*smask)(low) : value(low);
    }
  };
  Tdi tdi() const {
    Tdi tdi{value(ScanValue::tdi), {}};
    if (scan_.data().pSmask() != nullptr) tdi.smask = value(ScanValue::smask);
    return tdi;
  }
  CompositeScan value(ScanValue value) const { return {scan_, value, length_}; }

 private:
  const RegisterScan& scan_;
  std::int64_t length_;
};

constexpr auto kZeros = [](std::int64_t) { return std::uint64_t{0}; };

}  // namespace

void KsvfScans::doDataShift(Keyword keyword) {
  writePending(StaleCount::cancel);
  if (!shiftsData(keyword)) {
    report_.statusMsg("Header/Trailer info combined with SIR/SDR", StatusStyle::newLine);
    return;
  }
  compositeLength(pGlobTapData_.scanOf(registerOf(keyword)), report_);
  if (keyword == Keyword::sdr) {
    iSdrFlag_ = true;
  } else {
    iSirFlag_ = true;
    if (vars_.iInOrder) writeInstruction();
  }
}

void KsvfScans::writeOverwritten(Keyword keyword) {
  const bool wasPending = keyword == Keyword::sdr ? iSdrFlag_ : iSirFlag_;
  if (keyword != Keyword::sdr) writeSir(StaleCount::cancel);
  if (keyword != Keyword::sir) writeSdr(StaleCount::cancel);
  if (wasPending || !shiftsData(keyword)) iRunTestFlag_ = false;
}

bool KsvfScans::writeRunCount(std::int64_t count) {
  if (count == lTckRunCount_) return false;
  commands_.write(Command::KRUNTEST, {count});
  lTckRunCount_ = count;
  return true;
}

void KsvfScans::cancelRunCount(StaleCount count) {
  if (count == StaleCount::cancel && !iRunTestFlag_) writeRunCount(0);
}

void KsvfScans::writeEmptyScan() {
  commands_.writeEmptyScan();
  lSdrSize_ = 0;
}

void KsvfScans::writeInstruction() {
  RegisterScan& scan = pGlobTapData_.instructionScan;
  const std::int64_t length = compositeLength(scan, report_);
  // KSVF compares nothing on an instruction scan: its TDO and MASK are dropped.
  const Command command = length < 256 ? Command::KSIR : Command::KSIR2;
  if (length <= kChunkBits) {
    commands_.write(command, {length}, 0, length, ShortVectors(scan).tdi());
  } else {
    commands_.write(command, {length}, 0, length, LongVectors(scan, length).tdi());
  }
}

void KsvfScans::writePendingSir(StaleCount count) {
  cancelRunCount(count);
  writeInstruction();
  iSirFlag_ = false;
  // A player of version 2 waits after data scans only.
  if (vars_.iV2Compatibility && lTckRunCount_ != 0) writeEmptyScan();
}

bool KsvfScans::tests() const { return pGlobTapData_.dataScan.compares() && !vars_.iSkipTdoTest; }

void KsvfScans::writePendingSdr(StaleCount count) {
  RegisterScan& scan = pGlobTapData_.dataScan;
  const std::int64_t length = compositeLength(scan, report_);
  if (vars_.iFpgaFormat && length > vars_.lFpgaRecSize) {
    writePartition(LongVectors(scan, length), length);
  } else if (length <= kChunkBits) {
    writeWholeScan(ShortVectors(scan), length, count);
  } else {
    writeWholeScan(LongVectors(scan, length), length, count);
  }
  iSdrFlag_ = false;
}

template <typename Vectors>
void KsvfScans::writeWholeScan(const Vectors& vectors, std::int64_t length, StaleCount count) {
  const bool test = tests();
  if (length != lSdrSize_) commands_.write(Command::KSDRSIZE, {length});
  if (test) {
    writeMask(vectors.value(ScanValue::mask), length);
  } else if (maskKept_ || length != lSdrSize_) {
    maskKept_ = false;
    commands_.write(Command::KTDOMASK, {}, 0, length, kZeros);
  }
  lSdrSize_ = length;
  cancelRunCount(count);
  if (test) {
    commands_.write(Command::KSDRTDO, {}, 0, length, vectors.tdi(), vectors.value(ScanValue::tdo));
  } else if (vars_.iOptUseKSDR) {
    commands_.write(Command::KSDR, {}, 0, length, vectors.tdi());
  } else {
    // The zero mask makes the player ignore the zero TDO.
    commands_.write(Command::KSDRTDO, {}, 0, length, vectors.tdi(), kZeros);
  }
}

// Writes a mask unless its digits begin the last one written.
template <typename Mask>
void KsvfScans::writeMask(const Mask& mask, std::int64_t length) {
  const std::int64_t digits = digitsOf(length);
  if (compareHexData(mask, digits)) return;
  const std::int64_t bits = 4 * digits;
  if (bits <= kChunkBits) {
    pSdrMask_.initShort(bits, mask(0));
  } else {
    initTapField(pSdrMask_, bits, report_);
    for (std::int64_t low = 0; low < bits; low += kChunkBits) pSdrMask_.putBits(low, mask(low));
  }
  maskKept_ = true;
  commands_.write(Command::KTDOMASK, {}, 0, length, mask);
}

// Whether the digits of a mask, from the most significant one on, begin those of
// the last mask written.
template <typename Mask>
bool KsvfScans::compareHexData(const Mask& mask, std::int64_t digits) const {
  const std::int64_t bits = 4 * digits;
  if (!maskKept_ || bits > pSdrMask_.lLength()) return false;
  const std::int64_t offset = pSdrMask_.lLength() - bits;
  for (std::int64_t low = 0; low < bits; low += kChunkBits) {
    std::uint64_t differs = mask(low) ^ pSdrMask_.bitsAt(low + offset);
    if (bits - low < kChunkBits) differs &= lowBits(bits - low);
    if (differs != 0) return false;
  }
  return true;
}

template <typename Vectors>
void KsvfScans::writePartition(const Vectors& vectors, std::int64_t length) {
  const std::int64_t record = vars_.lFpgaRecSize;
  commands_.write(Command::KSDRSIZE, {record});
  lSdrSize_ = record;
  if (pGlobTapData_.pTapData.pMask() != nullptr && !vars_.exact) {
    report_.warning("TDO MASK ignored when partitioning into KSDRTDOB/C/E");
  }
  writeRunCount(0);
  const bool test = tests();
  const auto tdi = vectors.tdi();
  const auto tdo = vectors.value(ScanValue::tdo);
  for (std::int64_t low = 0; low < length;) {
    const std::int64_t count = std::min(length - low, record);
    const bool last = low + count == length;
    if (count < record) {
      commands_.write(Command::KSDRSIZE, {count});
      lSdrSize_ = count;
    }
    Command command = test ? Command::KSDRTDOC : Command::KSDRC;
    if (low == 0) command = test ? Command::KSDRTDOB : Command::KSDRB;
    if (last) command = test ? Command::KSDRTDOE : Command::KSDRE;
    if (test) {
      commands_.write(command, {}, low, count, tdi, tdo);
    } else {
      commands_.write(command, {}, low, count, tdi);
    }
    low += count;
  }
}

}  // namespace tapforge::progmode_svf2ksvf

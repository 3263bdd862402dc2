#ifndef TAPFORGE_VECTOR_SCAN_WRITER_H
#define TAPFORGE_VECTOR_SCAN_WRITER_H

#include "scan/tap_obj.h"
#include "svf/statements.h"
#include "vector/byte_writer.h"
#include "vector/ksvf_vars.h"

namespace progmode_svf2ksvf {

using tapforge::CTapField;
using tapforge::CTapObj;
using tapforge::Keyword;
using tapforge::RegisterPatterns;

/// Whether a run count in force is cancelled before a scan (yes, unless the
/// scan's own RUNTEST has just been written).
enum class RunCount { reset, keep };

/// Writes scans as KSVF commands, one statement late: a KRUNTEST must stand
/// before the scan that it belongs to, while SVF writes the RUNTEST after it.
/// So a scan is only marked as pending, and stays in its pattern until the next
/// statement shows whether a RUNTEST follows.
///
/// It also holds what makes the file compact: the last length, mask and run
/// count written. They depend on what was written, never on what was read.
class ScanWriter {
 public:
  ScanWriter(const KsvfVars& vars, ByteWriter& bytes, CTapObj& tap, Reporter& report)
      : vars_(vars), bytes_(bytes), tap_(tap), report_(report) {}

  /// Takes note of a scan statement whose pattern has just been stored.
  void doDataShift(Keyword scan);

  /// Write the pending scan of the kind, if there is one.
  void writeSir(RunCount runCount);
  void writeSdr(RunCount runCount);
  void writePending(RunCount runCount) {
    writeSir(runCount);
    writeSdr(runCount);
  }

  bool sirPending() const { return iSirFlag_; }
  bool sdrPending() const { return iSdrFlag_; }

  /// The statement before was a RUNTEST whose count may still apply.
  void setRunTestFlag(bool on) { iRunTestFlag_ = on; }
  bool runTestFlag() const { return iRunTestFlag_; }

  /// Writes a KRUNTEST, unless this count is the one in force; true if it was
  /// written.
  bool writeRunCount(long count);

  /// A data scan of no bits, which makes a player wait.
  void writeEmptyScan();

 private:
  void writeInstruction();
  void cancelRunCount();
  void writeMask(long length, bool test);
  void writeWholeScan(const VectorBits& tdi, long length, bool test, RunCount runCount);
  void writePartition(const VectorBits& tdi, long length, bool test);
  VectorBits shiftedBits(const RegisterPatterns& patterns, long length) const;
  VectorBits dataValue(tapforge::ScanValue value, long length) const;
  bool isLastMask(const CompositeScan& mask) const;
  void keepMask(const CompositeScan& mask);

  const KsvfVars& vars_;
  ByteWriter& bytes_;
  CTapObj& tap_;
  Reporter& report_;

  bool iSirFlag_ = false;
  bool iSdrFlag_ = false;
  bool iRunTestFlag_ = false;
  long lSdrSize_ = 0;       // bits; the last KSDRSIZE written
  long lTckRunCount_ = -1;  // TCKs; the last KRUNTEST written, -1 for none
  CTapField pSdrMask_;      // the last KTDOMASK written, while maskKept_
  bool maskKept_ = false;   // false: it was all zero, or there was none
};

}  // namespace progmode_svf2ksvf

#endif  // TAPFORGE_VECTOR_SCAN_WRITER_H

#ifndef TAPFORGE_VECTOR_KSVF_SCANS_H
#define TAPFORGE_VECTOR_KSVF_SCANS_H

#include <cstdint>

#include "io/reporter.h"
#include "scan/tap_obj.h"
#include "vector/command_writer.h"
#include "vector/ksvf_mode.h"

namespace tapforge::progmode_svf2ksvf {

/// What to do with the run count of an earlier RUNTEST before a pending scan is
/// written: `keep` only when the RUNTEST just written belongs to that scan.
enum class StaleCount { cancel, keep };

/// Writes scans as KSVF commands, one statement late: a KRUNTEST must come before
/// the scan that it belongs to, while SVF writes the RUNTEST after it. So a scan
/// is only marked as pending, and stays in its pattern until the next statement
/// shows whether a RUNTEST follows.
///
/// It also holds what makes the file compact: the last length, mask and run count
/// written. They depend on what was written, never on what was read.
class KsvfScans {
 public:
  KsvfScans(const KsvfVars& vars, CommandWriter& commands, CTapObj& tap, Reporter& report)
      : vars_(vars), commands_(commands), pGlobTapData_(tap), report_(report) {}

  /// Takes note of a scan, header or trailer statement whose pattern has just
  /// been stored.
  void doDataShift(Keyword keyword);

  /// Write the pending scan of the register, if there is one. With -inorder an
  /// instruction scan never is: it was written when it was met.
  void writeSir(StaleCount count) {
    if (iSirFlag_ && !vars_.iInOrder) writePendingSir(count);
  }
  void writeSdr(StaleCount count) {
    if (iSdrFlag_) writePendingSdr(count);
  }
  void writePending(StaleCount count) {
    writeSir(count);
    writeSdr(count);
  }

  /// To be called before a scan statement is read, because reading overwrites the
  /// bits of the pending scan of its kind; a header or trailer affects both kinds.
  void writeOverwritten(Keyword keyword);

  /// Whether the run count in force is not cancelled by the scan written next: on
  /// after a RUNTEST, off after any other statement but an SDR.
  void setRunTestFlag(bool on) { iRunTestFlag_ = on; }

  /// Writes a KRUNTEST, unless this count (TCKs) is the one in force; true if it
  /// was written.
  bool writeRunCount(std::int64_t count);

  /// A data scan of no bits, which makes a player wait.
  void writeEmptyScan();

 private:
  void writePendingSir(StaleCount count);
  void writePendingSdr(StaleCount count);
  void writeInstruction();
  void cancelRunCount(StaleCount count);
  template <typename Vectors>
  void writeWholeScan(const Vectors& vectors, std::int64_t length, StaleCount count);
  template <typename Mask>
  void writeMask(const Mask& mask, std::int64_t length);
  template <typename Mask>
  bool compareHexData(const Mask& mask, std::int64_t digits) const;
  template <typename Vectors>
  void writePartition(const Vectors& vectors, std::int64_t length);
  bool tests() const;

  const KsvfVars& vars_;
  CommandWriter& commands_;
  CTapObj& pGlobTapData_;
  Reporter& report_;

  bool iSirFlag_ = false;
  bool iSdrFlag_ = false;
  bool iRunTestFlag_ = false;
  std::int64_t lSdrSize_ = 0;       // bits; the last KSDRSIZE written
  std::int64_t lTckRunCount_ = -1;  // TCKs; the last KRUNTEST written, -1 for none
  CTapField pSdrMask_;              // the digits of the last KTDOMASK, while maskKept_
  bool maskKept_ = false;           // false: it was all zero, or there was none
};

}  // namespace tapforge::progmode_svf2ksvf

#endif  // TAPFORGE_VECTOR_KSVF_SCANS_H

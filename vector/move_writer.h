#ifndef TAPFORGE_VECTOR_MOVE_WRITER_H
#define TAPFORGE_VECTOR_MOVE_WRITER_H

#include "svf/run.h"
#include "svf/runtest.h"
#include "svf/state_statements.h"
#include "vector/byte_writer.h"
#include "vector/ksvf_vars.h"
#include "vector/scan_writer.h"

namespace progmode_svf2ksvf {

using tapforge::Run;
using tapforge::ScanRegister;

/// Reads the statements that move the TAP or wait, and writes them as KSVF
/// commands. Each first writes the scans that are still pending, in the place
/// that the format wants.
class MoveWriter final : private tapforge::RunTestSink {
 public:
  MoveWriter(const KsvfVars& vars, Run& run, ByteWriter& bytes, ScanWriter& scans)
      : vars_(vars), run_(run), bytes_(bytes), scans_(scans) {}

  void doState();
  void doEndState(ScanRegister which);
  void doRunTest();

  /// Writes the end state that doEndState() held back because a RUNTEST
  /// followed; true when there was one.
  bool writeDelayedEndState();

 private:
  void doStableState(TapState from, TapState to);
  void addTapTransition(TapState state);
  void writeEndState(ScanRegister which, TapState state);
  bool nextIsRunTest();
  long readRunCount();
  float countOfTime(const tapforge::Number& time, std::string_view unit) override;

  const KsvfVars& vars_;
  Run& run_;
  ByteWriter& bytes_;
  ScanWriter& scans_;

  // An ENDIR or ENDDR whose command goes out after the RUNTEST that follows.
  bool g_iDelayedEndxR_ = false;
  ScanRegister g_iStoredEndMode_ = ScanRegister::instruction;
  TapState g_iStoredEndTap_ = TapState::idle;
};

}  // namespace progmode_svf2ksvf

#endif  // TAPFORGE_VECTOR_MOVE_WRITER_H

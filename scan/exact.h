#ifndef TAPFORGE_SCAN_EXACT_H
#define TAPFORGE_SCAN_EXACT_H

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "scan/tap_obj.h"
#include "svf/clock_and_reset.h"
#include "svf/file_channel.h"
#include "svf/runtest.h"

namespace tapforge {

/// -exact: what is written does to the devices what the source does, and no wait is
/// shorter at the TCK of -tck_freq, or the run ends with an error. Here is what that
/// takes of the statements that are no scans: waits in clocks, and what a form cannot
/// say. SVF says all and only counts.
class ExactRules {
 public:
  /// `form` is the name of a form that cannot say all of SVF, or empty; `tckFreq` is
  /// in Hz, below 1 when it was not given. The others are borrowed.
  ExactRules(std::string_view form, std::int64_t tckFreq, CTapObj& tap, FileChannel& channel)
      : form_(form), tckFreq_(tckFreq), tap_(tap), channel_(channel) {}

  /// Ends the run: "-exact: why".
  [[noreturn]] void refuse(std::string_view why);

  /// One part of a RUNTEST. A run state is also the end state until another is given.
  void runTestPart(const RunTestPart& part);
  /// The wait of the RUNTEST whose last part was given: the larger of its count and its
  /// minimum time, in TCKs, in tap.iRunState, then to tap.iRunEndState. Where the form keeps
  /// times it is the count alone.
  std::int64_t endRunTest();

  void frequency(const Frequency& frequency);
  void resetLine(TrstMode mode);
  /// PIO and PIOMAP.
  void parallelIo();
  /// The values of an SIR or SDR are in force.
  void scan(ScanRegister which);

  /// The end of the source, which must have had a scan.
  void endOfSource();

 private:
  bool saysAll() const { return form_.empty(); }
  std::int64_t clocksOf(std::string_view number, std::int64_t hertz);

  std::string_view form_;
  std::int64_t tckFreq_;
  CTapObj& tap_;
  FileChannel& channel_;
  bool scanSeen_ = false;
  bool timeConverted_ = false;
  static constexpr std::int64_t kNone = std::numeric_limits<std::int64_t>::max();
  std::int64_t lowestFrequency_ = kNone;  // Hz, without its fraction
  std::string lowestAsWritten_;
  // Of the RUNTEST being read, in TCKs.
  std::int64_t clocks_ = 0;
  std::int64_t mostClocks_ = kNone;  // its MAXIMUM
};

}  // namespace tapforge

#endif  // TAPFORGE_SCAN_EXACT_H

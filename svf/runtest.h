#ifndef TAPFORGE_SVF_RUNTEST_H
#define TAPFORGE_SVF_RUNTEST_H

#include <cstdint>
#include <functional>

#include "svf/numbers.h"
#include "svf/state_statements.h"

namespace tapforge {

/// One part of a RUNTEST statement.
struct RunTestPart {
  enum class Kind : std::uint8_t {
    runState,
    count,    // TCKs, or SCKs where these are told apart
    time,     // a number with another unit, where times become counts
    minTime,  // seconds
    maxTime,  // seconds
    endState
  };
  Kind kind;
  TapState state = TapState::unknown;
  Number number{};
  /// The state or the unit as written; good until the next part is read.
  std::string_view asWritten{};
};

/// Reads the rest of a RUNTEST statement. Each part is given to `take` before the
/// next one is read, because output and messages of a statement keep the order of
/// its text.
void readRunTest(FileChannel& channel, const std::function<void(const RunTestPart&)>& take);

/// The numbers of one RUNTEST; -1 for what it does not give. 32-bit floats by
/// design.
struct RunTestNumbers {
  float fRunCount = -1.0F;  // TCKs
  float fMinTime = -1.0F;   // seconds
  float fMaxTime = -1.0F;   // seconds

  /// Takes over the number of a part that has one. A time that becomes a count
  /// is the caller's to convert.
  void add(const RunTestPart& part);
};

/// Ends the run when the maximum time does not allow the minimum time, or the
/// count at `frequency` (Hz). A frequency that is needed and not given (below 0)
/// becomes 1 MHz, with a note.
void checkRunTest(const RunTestNumbers& numbers, float& frequency, Reporter& report);

}  // namespace tapforge

#endif  // TAPFORGE_SVF_RUNTEST_H

#ifndef TAPFORGE_SVF_RUNTEST_H
#define TAPFORGE_SVF_RUNTEST_H

#include <optional>
#include <string_view>

#include "svf/real_number.h"
#include "svf/run.h"

namespace tapforge {

/// Takes the parts of a RUNTEST statement while they are read, because output
/// and messages of a statement keep the order of its text. Texts are good for
/// the call only.
class RunTestSink {
 public:
  virtual ~RunTestSink() = default;
  /// The run state, in lower case, when the statement names one.
  virtual void runState(std::string_view /*name*/) {}
  /// The clock count (TCKs), with its unit as written.
  virtual void runCount(long /*count*/, std::string_view /*unit*/) {}
  virtual void minTime(float /*seconds*/) {}
  virtual void maxTime(float /*seconds*/) {}
  virtual void endState(std::string_view /*name*/) {}
  /// The clock count that a time in this unit stands for, where the output
  /// knows no times. Asked only when SyntaxRules::timesNeedFrequency says so.
  virtual float countOfTime(const Number& time, std::string_view /*unit*/) {
    return time.asFloat();
  }
};

/// Reads the rest of a RUNTEST statement, up to its ";", stores its states,
/// count and times in the tap data and checks them against each other.
void readRunTest(Run& run, RunTestSink& sink);

}  // namespace tapforge

#endif  // TAPFORGE_SVF_RUNTEST_H

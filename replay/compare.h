#ifndef TAPFORGE_REPLAY_COMPARE_H_
#define TAPFORGE_REPLAY_COMPARE_H_

#include <string>

#include "replay/findings.h"
#include "replay/steps.h"
#include "replay/waits.h"

namespace tapforge_replay {

/// Plays a source and what was made of it side by side and notes how what reaches
/// the devices differs. Memory grows with the longest scan, not with the files.
class Comparison {
 public:
  /// The readers are borrowed. `tckHertz` is the rate at which the board clocks, 0 if
  /// it is not known.
  Comparison(Reader& source, Reader& converted, double tckHertz)
      : source_(source), converted_(converted), tckHertz_{tckHertz}, waits_{tckHertz, findings_} {}

  /// Throws Fault when a file cannot be read or played.
  void run();

  /// A few lines for people.
  std::string report() const;
  const Findings& findings() const { return findings_; }

 private:
  struct Side : Steps {
    using Steps::Steps;
    double hertz = kAnyHertz;          // the FREQUENCY in force,
    std::string frequency = kNowhere;  // and where it is set
    std::uint64_t resets = 0;          // entered where the states differ,
    std::uint64_t shifts = 0;          // and TCKs in shift states there
    std::string detour;                // where the states begin to differ

    std::string text() const;  // place and text of the operation
  };
  static constexpr const char* kNowhere = "(none)";

  void compareGap();  // all up to the next scans
  void takeWait(Side& side);
  void compareStates();
  void compareSettings();
  void passSetting(Side& side);
  void compareRates();
  bool isSameScan() const;
  bool compareScans();  // false: there is no sense in going on
  void compareBits();
  void tell(Difference difference, const std::string& from, const std::string& to);

  Side source_;
  Side converted_;
  double tckHertz_;
  Findings findings_;
  WaitComparison waits_;
  bool isResetUsed_ = false;     // a TRST ON was met
  bool isRateCompared_ = false;  // since the last FREQUENCY
  bool isAway_ = false;          // the states differ, up to the next scans
  bool isMove_ = false;          // ... and that began with a move
};

}  // namespace tapforge_replay

#endif  // TAPFORGE_REPLAY_COMPARE_H_

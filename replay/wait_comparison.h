#ifndef TAPFORGE_REPLAY_WAIT_COMPARISON_H_
#define TAPFORGE_REPLAY_WAIT_COMPARISON_H_

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "replay/findings.h"
#include "replay/waits.h"

namespace tapforge_replay {

/// Compares the waits of two files, those of a place at a time: between them neither
/// file enters a state or says anything that both have.
class WaitComparison {
 public:
  /// `tckHertz`: the rate of the board, 0 if it is not known.
  WaitComparison(double tckHertz, Findings& findings) : tckHertz_{tckHertz}, findings_{findings} {}

  void add(const PlacedWait& wait, bool isConverted);
  /// Clocks that the converted file lacks so far at this place; below 0: has too many.
  double missing() const;
  void endPlace();
  void endGap();  ///< at a scan; twice at the end of the files

  /// The rate up to which all waits are long enough, kAnyHertz if they do not depend
  /// on it, 0 if some are too short at each.
  double holdsUpTo() const { return holdsUpTo_; }
  void limitTo(double hertz) { holdsUpTo_ = std::min(holdsUpTo_, hertz); }

 private:
  // Whole waits, or what is missing or left over of some.
  struct Open {
    double clocks;
    std::string from;
    std::string to;
    std::uint64_t waits;
    bool isWhole;
    std::uint64_t gap;
  };

  void tell(const WaitPair& pair, const WaitPair::Judgement& judgement);
  void tellMaximum(const WaitPair& pair, const WaitPair::Judgement& judgement);
  void tellShorter(const WaitPair& pair, const WaitPair::Judgement& judgement);
  void keep(std::vector<Open>& list, const WaitPair& pair, double clocks);
  bool isFound(const Open& lost);

  double tckHertz_;
  Findings& findings_;
  std::array<WaitPair, 8> pairs_;  // in each stable state by each clock
  double holdsUpTo_ = kAnyHertz;

  std::uint64_t gap_ = 0;
  std::vector<Open> lost_;  // here and between the two scans before
  std::vector<Open> extra_;
};

}  // namespace tapforge_replay

#endif  // TAPFORGE_REPLAY_WAIT_COMPARISON_H_

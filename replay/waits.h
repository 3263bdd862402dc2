#ifndef TAPFORGE_REPLAY_WAITS_H_
#define TAPFORGE_REPLAY_WAITS_H_

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "replay/findings.h"
#include "replay/operation.h"

/// What waits ask for, and whether others give it. A wait asks for the larger of its
/// clocks and its time, so what a place of the walk asks for is a sum of these larger
/// ones, and depends on the rate of TCK. It is given when the sum of the other file is
/// no smaller at any rate up to the one in force.

namespace tapforge_replay {

constexpr double kAnyHertz = 1e15;  ///< where no rate is known

struct PlacedWait {
  Wait wait;
  Place place;
  double hertz = 0;  ///< of the FREQUENCY in force
};

/// Waits of a file in one TAP state by one clock: the first ones, and sums of others.
struct WaitList {
  struct Sum {
    double clocks = 0;
    double seconds = 0;
    std::uint64_t times = 0;  ///< waits that are in the sum by their time
    double hertz = 0;         ///< the highest FREQUENCY
    double maximum = 0;       ///< seconds, far too many where one has no MAXIMUM

    void add(const PlacedWait& wait, bool isTime);
    double clocksAt(double rate) const { return clocks + seconds * rate; }
  };

  std::vector<PlacedWait> first;
  Sum others;
  std::uint64_t count = 0;

  void add(const PlacedWait& wait, bool isConverted);
  Sum sumAt(double rate) const;  ///< of each wait what is larger at this rate
  std::string text() const;
};

/// What two files wait at one place.
struct WaitPair {
  enum class Verdict { kSame, kRounded, kShorter, kUnknownRate, kLonger };
  struct Judgement {
    Verdict verdict = Verdict::kSame;
    double rate = 0;               ///< at which the amounts are told, in Hz
    double missing = 0;            ///< clocks; below 0: there are more than asked for
    double tolerance = 0;          ///< clocks that rounding may lose
    double holdsUpTo = kAnyHertz;  ///< Hz, where times became clocks
  };

  WaitList from;
  WaitList to;

  bool isEmpty() const { return from.count + to.count == 0; }
  /// `tckHertz`: the rate of the board, 0 if it is not known. One of both is not empty.
  Judgement judge(double tckHertz) const;

 private:
  double missingAt(double rate) const;
  double toleranceAt(double rate) const;
};

/// Compares the waits of two files, those of a place at a time: between them neither
/// file enters a state or says anything that both have.
class WaitComparison {
 public:
  /// `tckHertz`: the rate of the board, 0 if it is not known.
  WaitComparison(double tckHertz, Findings& findings) : tckHertz_{tckHertz}, findings_{findings} {}

  void add(const PlacedWait& wait, bool isConverted);
  void endPlace() {
    if (!isEmpty_) closePlace();
  }
  bool isEven() const;  ///< no wait of this place is left over
  void endGap();        ///< at a scan, and once more at the end of the files

  /// The rate up to which all waits are long enough: kAnyHertz if they do not depend
  /// on it, 0 if some are too short at each.
  double holdsUpTo() const { return holdsUpTo_; }
  void limitTo(double hertz) { holdsUpTo_ = std::min(holdsUpTo_, hertz); }

 private:
  // Whole waits, or what is missing or left over of some.
  struct Open {
    double clocks;
    WaitPair waits;
    std::uint64_t gap;
    bool isWhole() const { return waits.from.count * waits.to.count == 0; }
  };

  void closePlace();
  void tell(const WaitPair& pair, const WaitPair::Judgement& judgement);
  void tell(Difference difference, double size, const WaitPair& pair);
  void tellMaximum(const WaitPair& pair, const WaitPair::Judgement& judgement);
  void tellShorter(const WaitPair& pair, const WaitPair::Judgement& judgement);
  bool isMoved(const Open& lost);

  double tckHertz_;
  Findings& findings_;
  std::array<WaitPair, 32> pairs_;  // in each state by each clock
  bool isEmpty_ = true;             // all of these
  double holdsUpTo_ = kAnyHertz;
  std::uint64_t gap_ = 0;
  std::vector<Open> lost_;  // here and between the two scans before
  std::vector<Open> extra_;
};

}  // namespace tapforge_replay

#endif  // TAPFORGE_REPLAY_WAITS_H_

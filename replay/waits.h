#ifndef TAPFORGE_REPLAY_WAITS_H_
#define TAPFORGE_REPLAY_WAITS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "replay/operation.h"

/// What waits ask for, and whether others give it. A wait asks for the larger of its
/// clocks and its time, so what a place of the walk asks for is a sum of these larger
/// ones, and depends on the rate of TCK. It is given when the sum of the other file is
/// no smaller at any rate up to the one in force.

namespace tapforge_replay {

constexpr double kAnyHertz = 1e15;    ///< where no rate is known
constexpr double kClockSlack = 5e-7;  ///< clocks, for the rounding of products

/// Clocks and times added up without an error.
struct Amount {
  std::int64_t clocks = 0;
  std::int64_t seconds = 0;  ///< whole ones,
  std::int64_t parts = 0;    ///< and 10^-18 of one
  std::uint64_t waits = 0;   ///< that this is the sum of,
  std::uint64_t times = 0;   ///< of these by their time
  double hertz = 0;          ///< the highest FREQUENCY in force at one of them

  /// Throws Fault when the sum is too large to be without an error.
  void add(const Amount& more);
  double clocksAt(double rate) const;
};

struct PlacedWait {
  PlacedWait(const Wait& what, const Place& where, double hertz);

  Wait wait;
  Place place;
  Amount clocks;  ///< what it asks for, when this is the larger
  Amount time;    ///< the same
};

/// Waits of a file in one TAP state by one clock: the first ones, and the sum of more.
struct WaitList {
  std::vector<PlacedWait> first;
  Amount more;

  bool isEmpty() const { return first.empty(); }
  std::uint64_t count() const { return first.size() + more.waits; }
  void add(const PlacedWait& wait, bool isConverted);
  Amount sumAt(double rate) const;  ///< of each wait what is larger at this rate
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

  bool isEmpty() const { return from.isEmpty() && to.isEmpty(); }
  std::string text() const;
  /// `tckHertz`: the rate of the board, 0 if it is not known. One of both is not empty.
  Judgement judge(double tckHertz) const;

 private:
  double missingAt(double rate) const;
  double toleranceAt(double rate) const;
};

}  // namespace tapforge_replay

#endif  // TAPFORGE_REPLAY_WAITS_H_

#ifndef TAPFORGE_REPLAY_WAITS_H_
#define TAPFORGE_REPLAY_WAITS_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "replay/findings.h"
#include "replay/operation.h"

namespace tapforge_replay {

/// The TCK frequency by which a conversion turned times into clocks.
class ClockRate {
 public:
  /// In Hz; 0: to be found out.
  explicit ClockRate(double given) : given_(given) {}

  /// The source's FREQUENCY, for want of anything better.
  void suggest(double hertz) { suggested_ = hertz; }

  /// Takes it from waits of so many seconds that became so many clocks, each
  /// with the fraction of a clock dropped. Returns false when earlier waits
  /// were taken for a lower frequency, so that they are too short.
  bool learn(double seconds, double clocks, double waits);

  double hertz() const;
  bool isLearned() const { return given_ <= 0 && learned_ > 0; }
  bool isSuggested() const { return given_ <= 0 && learned_ <= 0; }

 private:
  double given_;
  double suggested_ = 0;
  double learned_ = 0;
  double low_ = 0;  // what the waits so far allow
  double high_ = 0;
};

/// A wait between two scans, or equal ones in a row.
struct PlacedWait {
  Wait wait;
  std::size_t position = 0;  ///< waits with the same one have no move between them
  Place place;               ///< of the first
  std::uint64_t times = 1;
};

/// Compares the waits of two files, those between two scans at a time.
class WaitComparison {
 public:
  /// `inParts`: the converted form cuts long waits into parts.
  WaitComparison(ClockRate& rate, Findings& findings, bool inParts)
      : rate_(rate), findings_(findings), inParts_(inParts) {}

  void compare(const std::vector<PlacedWait>& source, const std::vector<PlacedWait>& converted);
  void finish();  ///< at the end of both files

  std::uint64_t count() const { return count_; }  ///< waits of the source
  std::uint64_t same() const { return same_; }
  bool usedRate() const { return usedRate_; }  ///< times were compared with clocks

 private:
  using Run = std::span<const PlacedWait>;  // waits without a move between them

  // A wait of the source that was not found, what is missing of one, or what the
  // converted file waits beyond the source.
  struct Open {
    double clocks = 0;
    std::string text;
    std::uint64_t waits = 1;
    std::string converted{};  // of text, the part about that file
    bool whole = true;        // a wait, not a part of one
  };

  // For each run of the source the index of the converted one that goes with it,
  // or a number above all of these.
  std::vector<std::size_t> align(const std::vector<Run>& source,
                                 const std::vector<Run>& converted) const;
  static std::vector<Run> runsOf(const std::vector<PlacedWait>& waits);
  void pair(Run source, Run converted, bool learn);
  void learnRate(Run source, Run converted);
  void one(const PlacedWait& source, const PlacedWait& converted);
  void judge(double missing, Run source, Run converted);
  double clocksOf(const Wait& wait) const;
  double clocksOf(Run run) const;
  bool claim(std::vector<Open>& extra, Open& lost);
  void checkMaximum(const PlacedWait& source, Run converted);

  ClockRate& rate_;
  Findings& findings_;
  bool inParts_;
  std::uint64_t count_ = 0;
  std::uint64_t same_ = 0;
  bool usedRate_ = false;

  // Times judged by the rate so far: should it prove too low, they are too short.
  std::uint64_t timesJudged_ = 0;
  std::string firstTime_;

  std::vector<Open> short_;
  std::vector<Open> lost_;
  std::vector<Open> extra_;
  std::vector<Open> lostBefore_;  // between the two scans before
  std::vector<Open> extraBefore_;
};

}  // namespace tapforge_replay

#endif  // TAPFORGE_REPLAY_WAITS_H_

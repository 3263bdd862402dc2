#ifndef TAPFORGE_REPLAY_FINDINGS_H_
#define TAPFORGE_REPLAY_FINDINGS_H_

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tapforge_replay {

/// Ways in which a converted file can differ from its source: in its scans, its waits,
/// its states, its settings.
// clang-format off
enum class Difference {
  kScans, kNotPlayable, kNoScans, kCare, kComparedLess, kComparedMore,
  kUnknownRate, kShorterWaits, kLostWaits, kMovedWaits, kRoundedWaits, kLongerWaits,
  kBeyondMaximum, kMaximumTimes, kStateMoves, kEndStates, kResetLine, kResetLineOff,
  kParallelIo, kTooFast, kFrequency, kCount
};
// clang-format on
constexpr std::size_t kDifferenceCount = static_cast<std::size_t>(Difference::kCount);

/// What is said about a difference. kFatal ones cannot be allowed. kHarmless ones leave
/// the exit status alone: the devices get the same and no wait is shorter.
enum class Weight { kFatal, kBlamed, kHarmless };
struct DifferenceRule {
  std::string_view name;
  std::string_view meaning;
  Weight weight = Weight::kBlamed;
};
extern const std::array<DifferenceRule, kDifferenceCount> kDifferenceRules;

/// The difference of a name, if it can be allowed.
std::optional<Difference> findDifference(std::string_view name);

/// How often each difference was found, and where.
class Findings {
 public:
  struct Entry {
    std::uint64_t count = 0;
    std::string first;
    std::string largest;
    double largestSize = 0;
  };

  /// `text()` tells the place. It is asked for the first and the largest ones only.
  template <typename Text>
  void add(Difference difference, double size, const Text& text, std::uint64_t count = 1) {
    Entry& entry = entries_[static_cast<std::size_t>(difference)];
    if (entry.count == 0 || size > entry.largestSize) {
      (entry.count == 0 ? entry.first : entry.largest) = text();
      entry.largestSize = size;
    }
    entry.count += count;
  }
  const Entry& operator[](Difference difference) const {
    return entries_[static_cast<std::size_t>(difference)];
  }

  /// Some lines on each difference that was found, for people.
  std::string text() const;

 private:
  std::array<Entry, kDifferenceCount> entries_;
};

}  // namespace tapforge_replay

#endif  // TAPFORGE_REPLAY_FINDINGS_H_

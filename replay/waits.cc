#include "replay/waits.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tapforge_replay {
namespace {

constexpr double kDefaultHertz = 1e6;
constexpr double kMostHertz = 1e19;
constexpr std::size_t kMostPairs = 1 << 20;
constexpr double kSinglePrecision = 2e-7;  // relative error of a product that a converter makes

// Rounding here must not turn equal amounts into different ones.
double slackOf(double clocks) { return 1e-6 + clocks * 1e-9; }

// The number with the fewest digits that lies between two.
double roundest(double low, double high) {
  for (double step = std::pow(10, std::floor(std::log10(high))); step >= 1; step /= 10) {
    const double candidate = std::ceil(low / step) * step;
    if (candidate <= high) return candidate;
  }
  return low;
}

std::uint64_t countOf(std::span<const PlacedWait> waits) {
  std::uint64_t count = 0;
  for (const PlacedWait& wait : waits) count += wait.times;
  return count;
}

TapState stateOf(std::span<const PlacedWait> waits) { return waits.front().wait.state; }

std::string textOf(const char* file, std::span<const PlacedWait> waits) {
  const PlacedWait& first = waits.front();
  std::string text = file + (' ' + describe(first.place)) + " (" + describe(first.wait);
  const std::uint64_t count = countOf(waits);
  if (count > 1) text += " and " + std::to_string(count - 1) + " more";
  return text + ')';
}

}  // namespace

bool ClockRate::learn(double seconds, double clocks, double waits) {
  if (given_ > 0 || seconds <= 0 || clocks <= 0) return true;
  const double low = clocks / seconds * (1 - kSinglePrecision);
  const double high = (clocks + waits) / seconds * (1 + kSinglePrecision);
  if (!(high <= kMostHertz)) return true;  // no clock of a TAP; nor is an overflow
  if (learned_ <= 0 || low > high_) {
    const bool first = learned_ <= 0;
    low_ = low;
    high_ = high;
    learned_ = roundest(low, high);
    return first;
  }
  if (high < low_) return true;  // this one is short itself
  low_ = std::max(low_, low);
  high_ = std::min(high_, high);
  if (learned_ < low_ || learned_ > high_) learned_ = roundest(low_, high_);
  return true;
}

double ClockRate::hertz() const {
  if (given_ > 0) return given_;
  if (learned_ > 0) return learned_;
  return suggested_ > 0 ? suggested_ : kDefaultHertz;
}

double WaitComparison::clocksOf(const Wait& wait) const {
  return wait.seconds < 0 ? wait.clocks : std::max(wait.clocks, wait.seconds * rate_.hertz());
}

double WaitComparison::clocksOf(Run run) const {
  double sum = 0;
  for (const PlacedWait& wait : run) sum += clocksOf(wait.wait) * static_cast<double>(wait.times);
  return sum;
}

std::vector<WaitComparison::Run> WaitComparison::runsOf(const std::vector<PlacedWait>& waits) {
  std::vector<Run> runs;
  for (const PlacedWait& wait : waits) {
    const bool more = !runs.empty() && runs.back().front().position == wait.position;
    if (more) {
      runs.back() = {runs.back().data(), runs.back().size() + 1};
    } else {
      runs.emplace_back(&wait, 1);
    }
  }
  return runs;
}

void WaitComparison::checkMaximum(const PlacedWait& source, Run converted) {
  const auto keeps = [&source](const PlacedWait& wait) {
    return wait.wait.maximum == source.wait.maximum;
  };
  if (source.wait.maximum < 0 || std::any_of(converted.begin(), converted.end(), keeps)) return;
  findings_.add(
      Difference::kMaximumTimes, 0,
      [&] {
        return textOf("source", {&source, 1});
      },
      source.times);
}

void WaitComparison::judge(double missing, Run source, Run converted) {
  const auto text = [&] {
    return textOf("source", source) + ", " + textOf("converted", converted);
  };
  const std::uint64_t waits = countOf(source);
  const double slack = slackOf(clocksOf(source));
  const auto systemClock = [](Run run) { return run.front().wait.systemClock; };
  if (missing > slack) {
    short_.push_back({missing, text(), waits, {}, false});
  } else if (stateOf(source) != stateOf(converted) ||
             systemClock(source) != systemClock(converted)) {
    findings_.add(Difference::kMovedWaits, 0, text, waits);
  } else if (-missing > slack) {
    extra_.push_back({-missing, text(), 1, textOf("converted", converted), false});
  } else {
    same_ += waits;
  }
}

void WaitComparison::one(const PlacedWait& source, const PlacedWait& converted) {
  checkMaximum(source, {&converted, 1});
  const Wait& from = source.wait;
  const Wait& to = converted.wait;
  double missing = 0;  // clocks
  if ((from.clocks < 0) == (to.clocks < 0) && (from.seconds < 0) == (to.seconds < 0)) {
    // Each amount is asked for on its own; what one has too much does not help the other.
    const double clocks = from.clocks - to.clocks;
    const double time = (from.seconds - to.seconds) * rate_.hertz();
    missing = std::max(clocks, time) > 0 ? std::max(clocks, time) : std::min(clocks, time);
  } else {
    usedRate_ = true;
    missing = clocksOf(from) - clocksOf(to);
  }
  judge(missing, {&source, 1}, {&converted, 1});
}

void WaitComparison::learnRate(Run source, Run converted) {
  double seconds = 0;
  double counts = 0;
  std::uint64_t times = 0;
  for (const PlacedWait& wait : source) {
    const bool isTime = wait.wait.seconds >= 0;
    if (isTime && wait.wait.clocks >= 0) return;  // a form may take one of them, or both
    const auto repeated = static_cast<double>(wait.times);
    (isTime ? seconds : counts) += repeated * std::max(wait.wait.clocks, wait.wait.seconds);
    times += isTime ? wait.times : 0;
  }
  const auto isTime = [](const PlacedWait& wait) { return wait.wait.seconds >= 0; };
  if (times == 0 || std::any_of(converted.begin(), converted.end(), isTime)) return;
  // There must be no wait among them that is not the source's.
  const std::uint64_t parts = countOf(converted);
  const double part = converted.front().wait.clocks;
  const bool isCut = inParts_ && countOf(source) == 1 && converted.back().wait.clocks <= part &&
                     std::all_of(converted.begin(), converted.end() - 1,
                                 [&](const PlacedWait& wait) { return wait.wait.clocks == part; });
  if (parts != countOf(source) && !isCut && (inParts_ || parts != 1)) return;
  if (!rate_.learn(seconds, clocksOf(converted) - counts, static_cast<double>(times))) {
    findings_.add(
        Difference::kShorterWaits, 0, [this] { return firstTime_; }, timesJudged_);
    same_ -= std::min(same_, timesJudged_);
    timesJudged_ = 0;
  }
  if (timesJudged_ == 0) firstTime_ = textOf("source", source);
  timesJudged_ += times;
}

void WaitComparison::pair(Run source, Run converted, bool learn) {
  if (learn) learnRate(source, converted);
  const auto sameTimes = [](const PlacedWait& left, const PlacedWait& right) {
    return left.times == right.times;
  };
  if (std::equal(source.begin(), source.end(), converted.begin(), converted.end(), sameTimes)) {
    for (std::size_t i = 0; i < source.size(); ++i) one(source[i], converted[i]);
    return;
  }
  for (const PlacedWait& wait : source) {
    usedRate_ = usedRate_ || wait.wait.seconds >= 0;
    checkMaximum(wait, converted);
  }
  judge(clocksOf(source) - clocksOf(converted), source, converted);
}

// One by one where there are as many. Else the pairing in which most goes together,
// as long as that is not too much work.
std::vector<std::size_t> WaitComparison::align(const std::vector<Run>& source,
                                               const std::vector<Run>& converted) const {
  const std::size_t rows = source.size() + 1;
  const std::size_t columns = converted.size() + 1;
  std::vector<std::size_t> pairs(source.size(), converted.size());
  if (rows == columns || converted.empty() || rows * columns > kMostPairs) {
    for (std::size_t i = 0; i < pairs.size(); ++i) pairs[i] = i;
    return pairs;
  }
  const auto likeness = [this](Run from, Run to) -> unsigned {
    const double missing = clocksOf(from) - clocksOf(to);
    if (stateOf(from) != stateOf(to)) return 1;
    return std::abs(missing) <= slackOf(clocksOf(from)) ? 5 : missing < 0 ? 3 : 2;
  };
  std::vector<unsigned> best(rows * columns);  // of the first so many runs of both
  const auto at = [columns](std::size_t i, std::size_t j) { return i * columns + j; };
  for (std::size_t i = 1; i < rows; ++i) {
    for (std::size_t j = 1; j < columns; ++j) {
      const unsigned together = best[at(i - 1, j - 1)] + likeness(source[i - 1], converted[j - 1]);
      best[at(i, j)] = std::max({best[at(i - 1, j)], best[at(i, j - 1)], together});
    }
  }
  for (std::size_t i = rows - 1, j = columns - 1; i > 0 && j > 0;) {
    if (best[at(i, j)] == best[at(i - 1, j)]) {
      --i;
    } else if (best[at(i, j)] == best[at(i, j - 1)]) {
      --j;
    } else {
      pairs[--i] = --j;
    }
  }
  return pairs;
}

bool WaitComparison::claim(std::vector<Open>& extra, Open& lost) {
  // What a wait lacks is not made up for by another one that is too long.
  const auto helps = [&lost](const Open& item) { return lost.whole || item.whole; };
  double sum = 0;
  for (const Open& item : extra) sum += helps(item) ? item.clocks : 0;
  if (sum + slackOf(lost.clocks) < lost.clocks) return false;
  double left = lost.clocks;
  std::string text;
  for (Open& item : extra) {
    if (item.clocks <= 0 || left <= 0 || !helps(item)) continue;
    if (text.empty()) text = item.converted;
    const double part = std::min(left, item.clocks);
    item.clocks -= part;
    left -= part;
  }
  findings_.add(
      Difference::kMovedWaits, lost.clocks,
      [&] { return lost.text + (text.empty() ? "" : ", now part of " + text); }, lost.waits);
  return true;
}

void WaitComparison::compare(const std::vector<PlacedWait>& source,
                             const std::vector<PlacedWait>& converted) {
  const auto equal = [](const PlacedWait& left, const PlacedWait& right) {
    return left.wait == right.wait && left.times == right.times && left.position == right.position;
  };
  const std::uint64_t count = countOf(source);
  count_ += count;
  if (lostBefore_.empty() && extraBefore_.empty() &&
      std::equal(source.begin(), source.end(), converted.begin(), converted.end(), equal)) {
    same_ += count;
    return;
  }
  const std::vector<Run> from = runsOf(source);
  const std::vector<Run> to = runsOf(converted);
  std::vector<bool> taken(to.size());
  const std::vector<std::size_t> pairs = align(from, to);
  const bool inStep = from.size() == to.size();
  for (std::size_t i = 0; i < from.size(); ++i) {
    if (const std::size_t at = pairs[i]; at < to.size()) {
      taken[at] = true;
      pair(from[i], to[at], inStep && stateOf(from[i]) == stateOf(to[at]));
      continue;
    }
    for (const PlacedWait& wait : from[i]) {
      const Run alone(&wait, 1);
      const double clocks = clocksOf(alone);
      if (clocks > 0) lost_.push_back({clocks, textOf("source", alone), wait.times});
      same_ += clocks > 0 ? 0 : wait.times;
    }
  }
  for (std::size_t i = 0; i < to.size(); ++i) {
    const double clocks = taken[i] ? 0 : clocksOf(to[i]);
    if (clocks > 0)
      extra_.push_back({clocks, textOf("converted", to[i]), 1, textOf("converted", to[i])});
  }

  // What is missing here may be found beside it: between these two scans, or, if it
  // is all of a wait, after the scan before or still after the next one.
  for (Open& part : short_) {
    if (claim(extra_, part)) continue;
    findings_.add(
        Difference::kShorterWaits, part.clocks, [&] { return part.text; }, part.waits);
  }
  short_.clear();
  std::erase_if(lost_, [this](Open& lost) { return claim(extra_, lost); });
  for (Open& lost : lostBefore_) {
    if (claim(extra_, lost)) continue;
    findings_.add(
        Difference::kLostWaits, lost.clocks, [&] { return lost.text; }, lost.waits);
  }
  std::erase_if(lost_, [this](Open& lost) { return claim(extraBefore_, lost); });
  for (const Open& extra : extraBefore_) {
    if (extra.clocks <= slackOf(0)) continue;
    findings_.add(Difference::kLongerWaits, extra.clocks, [&] { return extra.text; });
  }
  lostBefore_.swap(lost_);
  extraBefore_.swap(extra_);
  lost_.clear();
  extra_.clear();
}

void WaitComparison::finish() {
  compare({}, {});
  compare({}, {});
}

}  // namespace tapforge_replay

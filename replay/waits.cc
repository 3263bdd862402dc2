#include "replay/waits.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tapforge_replay {
namespace {

constexpr double kDefaultHertz = 1e6;
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

std::string textOf(const char* file, const PlacedWait& first, const PlacedWait& last) {
  std::string text = file + (' ' + describe(first.place)) + " (" + describe(first.wait);
  if (&last != &first) text += " and " + std::to_string(&last - &first) + " more";
  return text + ')';
}

}  // namespace

bool ClockRate::learn(double seconds, double clocks, double waits) {
  if (given_ > 0 || seconds <= 0 || clocks <= 0) return true;
  const double low = clocks / seconds * (1 - kSinglePrecision);
  const double high = (clocks + waits) / seconds * (1 + kSinglePrecision);
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

double WaitComparison::clocksOf(const Run& run) const {
  double sum = 0;
  for (const PlacedWait* wait = run.first; wait <= run.last; ++wait) sum += clocksOf(wait->wait);
  return sum;
}

std::vector<WaitComparison::Run> WaitComparison::runsOf(const std::vector<PlacedWait>& waits) {
  std::vector<Run> runs;
  for (const PlacedWait& wait : waits) {
    const bool more = !runs.empty() && runs.back().first->position == wait.position;
    if (!more) runs.push_back({&wait, &wait});
    runs.back().last = &wait;
  }
  return runs;
}

void WaitComparison::checkMaximum(const PlacedWait& source, const PlacedWait& converted) {
  if (source.wait.maximum < 0 || source.wait.maximum == converted.wait.maximum) return;
  findings_.add(Difference::kMaximumTimes, 0, [&] { return textOf("source", source, source); });
}

void WaitComparison::judge(double missing, const Run& source, const Run& converted) {
  const auto text = [&] {
    return textOf("source", *source.first, *source.last) + ", " +
           textOf("converted", *converted.first, *converted.last);
  };
  const auto waits = static_cast<std::uint64_t>(source.last - source.first + 1);
  const bool otherClock = source.first->wait.systemClock != converted.first->wait.systemClock;
  if (missing > slackOf(clocksOf(source))) {
    findings_.add(Difference::kShorterWaits, missing, text, waits);
  } else if (source.state() != converted.state() || otherClock) {
    findings_.add(Difference::kMovedWaits, 0, text, waits);
  } else if (-missing > slackOf(clocksOf(source))) {
    extra_.push_back({-missing, text()});
  } else {
    same_ += waits;
  }
}

void WaitComparison::one(const PlacedWait& source, const PlacedWait& converted) {
  checkMaximum(source, converted);
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
  judge(missing, {&source, &source}, {&converted, &converted});
}

void WaitComparison::pair(const Run& source, const Run& converted, bool learn) {
  const auto isTime = [](const PlacedWait& wait) {
    return wait.wait.clocks < 0 && wait.wait.seconds > 0;
  };
  const auto isCount = [](const PlacedWait& wait) { return wait.wait.seconds < 0; };
  if (std::all_of(source.first, source.last + 1, isTime) &&
      std::all_of(converted.first, converted.last + 1, isCount)) {
    double seconds = 0;
    const auto waits = source.last - source.first + 1;
    for (const PlacedWait* wait = source.first; wait <= source.last; ++wait) {
      seconds += wait->wait.seconds;
    }
    if (learn && !rate_.learn(seconds, clocksOf(converted), static_cast<double>(waits))) {
      findings_.add(
          Difference::kShorterWaits, 0, [this] { return firstTime_; }, timesJudged_);
      same_ -= std::min(same_, timesJudged_);
      timesJudged_ = 0;
    }
    if (timesJudged_ == 0) firstTime_ = textOf("source", *source.first, *source.last);
    timesJudged_ += static_cast<std::uint64_t>(waits);
  }
  if (source.last - source.first == converted.last - converted.first) {
    const PlacedWait* to = converted.first;
    for (const PlacedWait* from = source.first; from <= source.last; ++from) one(*from, *to++);
    return;
  }
  for (const PlacedWait* wait = source.first; wait <= source.last; ++wait) {
    usedRate_ = usedRate_ || wait->wait.seconds >= 0;
    checkMaximum(*wait, {});
  }
  judge(clocksOf(source) - clocksOf(converted), source, converted);
}

bool WaitComparison::claim(std::vector<Open>& extra, Open& lost) {
  double sum = 0;
  for (const Open& item : extra) sum += item.clocks;
  if (sum + slackOf(lost.clocks) < lost.clocks) return false;
  double left = lost.clocks;
  std::string text;
  for (Open& item : extra) {
    if (item.clocks <= 0 || left <= 0) continue;
    if (text.empty()) text = item.text;
    const double part = std::min(left, item.clocks);
    item.clocks -= part;
    left -= part;
  }
  findings_.add(Difference::kMovedWaits, lost.clocks,
                [&] { return lost.text + (text.empty() ? "" : "; moved to: " + text); });
  return true;
}

void WaitComparison::compare(const std::vector<PlacedWait>& source,
                             const std::vector<PlacedWait>& converted) {
  if (source.empty() && converted.empty() && lostBefore_.empty() && extraBefore_.empty()) return;
  count_ += source.size();
  const std::vector<Run> from = runsOf(source);
  const std::vector<Run> to = runsOf(converted);
  std::vector<bool> taken(to.size());
  const bool inStep = from.size() == to.size();
  std::size_t next = 0;
  for (std::size_t i = 0; i < from.size(); ++i) {
    std::size_t at = inStep ? i : next;
    while (!inStep && at < to.size() && to[at].state() != from[i].state()) ++at;
    if (at < to.size()) {
      taken[at] = true;
      next = at + 1;
      pair(from[i], to[at], inStep && from[i].state() == to[at].state());
      continue;
    }
    for (const PlacedWait* wait = from[i].first; wait <= from[i].last; ++wait) {
      const double clocks = clocksOf(wait->wait);
      if (clocks > 0) lost_.push_back({clocks, textOf("source", *wait, *wait)});
      same_ += clocks > 0 ? 0 : 1;
    }
  }
  for (std::size_t i = 0; i < to.size(); ++i) {
    const double clocks = taken[i] ? 0 : clocksOf(to[i]);
    if (clocks > 0) extra_.push_back({clocks, textOf("converted", *to[i].first, *to[i].last)});
  }

  // What is missing here may be found beside it, after this scan or after the one
  // before, or still after the next one.
  std::erase_if(lost_, [this](Open& lost) { return claim(extra_, lost); });
  for (Open& lost : lostBefore_) {
    if (claim(extra_, lost)) continue;
    findings_.add(Difference::kLostWaits, lost.clocks, [&] { return lost.text; });
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

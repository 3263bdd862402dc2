#include "replay/waits.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tapforge_replay {
namespace {

using Verdict = WaitPair::Verdict;

constexpr double kUsualHertz = 1e6;  // to tell amounts where no rate is known
constexpr double kClockSlack = 5e-7;
constexpr double kDigitsOfTime = 1e-15;
constexpr double kTimeTolerance = 0.005;
constexpr double kClockTolerance = 1e-7;
constexpr std::size_t kMostFirst = 32;

constexpr std::size_t kMostOpen = 1000;
constexpr double kMostRounded = 1.005;  // of a MAXIMUM
constexpr double kLeast = 1e-6;         // clocks

WaitList alone(const PlacedWait& wait) { return {{wait}, {}, 1}; }

bool hasMaximum(const WaitList& list) {
  return std::any_of(list.first.begin(), list.first.end(),
                     [](const PlacedWait& each) { return each.wait.maximum >= 0; });
}

}  // namespace

void WaitList::Sum::add(const PlacedWait& wait, bool isTime) {
  clocks += isTime ? 0 : std::ceil(wait.wait.clocks);
  seconds += isTime ? wait.wait.seconds : 0;
  times += isTime ? 1 : 0;
  hertz = std::max(hertz, wait.hertz);
  maximum += wait.wait.maximum < 0 ? kAnyHertz : wait.wait.maximum;
}

// Where there are many, of one that asks for both no more is known than that it is no
// longer than one after the other, and no shorter than its clocks.
void WaitList::add(const PlacedWait& wait, bool isConverted) {
  ++count;
  if (first.size() < kMostFirst) {
    first.push_back(wait);
    return;
  }
  const bool isClocks = wait.wait.clocks >= 0;
  if (isClocks) others.add(wait, false);
  if (!isClocks || (!isConverted && wait.wait.seconds > 0)) others.add(wait, true);
}

WaitList::Sum WaitList::sumAt(double rate) const {
  Sum sum = others;
  for (const PlacedWait& each : first) sum.add(each, each.wait.clocks < each.wait.seconds * rate);
  return sum;
}

std::string WaitList::text() const {
  if (first.empty()) return "(none)";
  const std::string more = count > 1 ? " and " + std::to_string(count - 1) + " more" : "";
  return describe(first[0].place) + " (" + describe(first[0].wait) + more + ")";
}

double WaitPair::missingAt(double rate) const {
  const WaitList::Sum asked = from.sumAt(rate);
  const WaitList::Sum given = to.sumAt(rate);
  const double clocks = std::fma(asked.seconds - given.seconds, rate, asked.clocks - given.clocks);
  const double slack = asked.times == 0 ? 0 : kClockSlack + asked.seconds * rate * kDigitsOfTime;
  return std::abs(clocks) <= slack ? 0 : clocks;
}

// Times that stayed times have lost digits, those that became clocks a part of one;
// clocks may lose nothing, and no wait may get lost.
double WaitPair::toleranceAt(double rate) const {
  const WaitList::Sum asked = from.sumAt(rate);
  const double clocks = asked.seconds * rate;
  if (to.count == 0) return 0;
  if (to.sumAt(kAnyHertz).times > 0) return clocks * kTimeTolerance;
  return std::max(static_cast<double>(asked.times), clocks * kClockTolerance) + kClockSlack;
}

WaitPair::Judgement WaitPair::judge(double tckHertz) const {
  Judgement result;
  const bool isSystem = (from.count == 0 ? to : from).first[0].wait.systemClock;
  const bool isTime = to.sumAt(kAnyHertz).times > 0;
  double limit = tckHertz > 0 ? tckHertz : from.sumAt(0).hertz;
  if (isSystem || from.count == 0) limit = kAnyHertz;
  const bool becameClocks = !isTime && !isSystem && to.count > 0 && missingAt(0) <= 0;
  if (becameClocks && missingAt(kAnyHertz) > 0) {
    double beyond = kAnyHertz;
    result.holdsUpTo = 0;
    for (int i = 0; i < 100; ++i) {
      const double middle = (result.holdsUpTo + beyond) / 2;
      (missingAt(middle) > 0 ? beyond : result.holdsUpTo) = middle;
    }
    if (limit == kAnyHertz) result.verdict = Verdict::kUnknownRate;
  }
  result.rate = limit < kAnyHertz ? limit : kUsualHertz;
  result.missing = missingAt(result.rate);
  result.tolerance = toleranceAt(result.rate);
  if (result.verdict == Verdict::kUnknownRate) return result;

  // What is given grows evenly between these rates, and what is asked for never slower
  // than before, so that most is missing at one of them.
  std::vector<double> rates = {0, limit};
  for (const PlacedWait& each : to.first) {
    const double bend = each.wait.clocks / each.wait.seconds;
    if (bend > 0 && bend < limit) rates.push_back(bend);
  }
  for (const double rate : rates) {
    const double missing = missingAt(rate);
    if (missing <= 0) continue;
    const auto verdict = missing <= toleranceAt(rate) ? Verdict::kRounded : Verdict::kShorter;
    result.verdict = std::max(result.verdict, verdict);
    if (rate <= result.rate) result.missing = std::max(result.missing, missing);
  }
  if (result.verdict > Verdict::kSame) return result;
  const bool isMore = isTime && (missingAt(0) < 0 || missingAt(limit) < 0);
  if (isMore) result.missing = std::min(result.missing, -1.0);  // at some other rate
  const double roundedUp = isTime ? 0 : result.tolerance;
  if (result.missing < -roundedUp) result.verdict = Verdict::kLonger;
  return result;
}

// A wait is compared with another one alone first, so that the one that differs is
// told. What is left of both files goes together at the end of the place.
void WaitComparison::add(const PlacedWait& wait, bool isConverted) {
  isEmpty_ = false;
  WaitPair& pair =
      pairs_[static_cast<std::size_t>(wait.wait.state) * 2 + (wait.wait.systemClock ? 1 : 0)];
  WaitList& others = isConverted ? pair.from : pair.to;
  const auto goesWith = [&](const PlacedWait& other) {
    if (other.wait == wait.wait) return true;
    const WaitPair both{alone(isConverted ? other : wait), alone(isConverted ? wait : other)};
    const WaitPair::Judgement judgement = both.judge(tckHertz_);
    // A clock short may be the first part of several, and a clock more may belong to another
    // wait; a time that stayed one is no part.
    const bool isTime = both.to.first[0].wait.seconds >= 0;
    if (judgement.verdict > (isTime ? Verdict::kRounded : Verdict::kSame)) return false;
    if (judgement.missing < 0) return false;
    tell(both, judgement);
    return true;
  };
  const bool isAll = others.count == others.first.size();  // or none can be told
  const auto end = others.first.end();
  const auto found = isAll ? std::find_if(others.first.begin(), end, goesWith) : end;
  if (found == end) {
    (isConverted ? pair.to : pair.from).add(wait, isConverted);
  } else {
    others.first.erase(found);
    --others.count;
  }
}

bool WaitComparison::isEven() const {
  return std::all_of(pairs_.begin(), pairs_.end(), [](const auto& pair) { return pair.isEmpty(); });
}

void WaitComparison::closePlace() {
  isEmpty_ = true;
  for (WaitPair& pair : pairs_) {
    if (pair.isEmpty()) continue;
    tell(pair, pair.judge(tckHertz_));
    pair = {};
  }
}

void WaitComparison::tell(Difference difference, double size, const WaitPair& pair) {
  findings_.add(
      difference, size,
      [&] { return "source " + pair.from.text() + ", converted " + pair.to.text(); },
      pair.from.count > 0 ? pair.from.count : pair.to.count);
}

void WaitComparison::tell(const WaitPair& pair, const WaitPair::Judgement& judgement) {
  const bool isShorter = judgement.verdict == Verdict::kShorter;
  limitTo(isShorter && judgement.holdsUpTo == kAnyHertz ? 0 : judgement.holdsUpTo);
  if (lost_.size() + extra_.size() > kMostOpen) endGap();
  if (isShorter) tellShorter(pair, judgement);
  if (judgement.verdict == Verdict::kLonger) extra_.push_back({-judgement.missing, pair, gap_});
  const bool isRounded = judgement.verdict == Verdict::kRounded;
  if (isRounded || judgement.verdict == Verdict::kUnknownRate) {
    tell(isRounded ? Difference::kRoundedWaits : Difference::kUnknownRate, judgement.missing, pair);
  }
  tellMaximum(pair, judgement);
}

// Where one of several waits is as long as what is missing, it is this one.
void WaitComparison::tellShorter(const WaitPair& pair, const WaitPair::Judgement& judgement) {
  const bool isAll = pair.to.count == 0 && pair.from.count == pair.from.first.size();
  for (const PlacedWait& each : pair.from.first) {
    const WaitPair lost{alone(each), {}};
    const double clocks = lost.from.sumAt(judgement.rate).clocksAt(judgement.rate);
    const bool isIt = std::abs(clocks - judgement.missing) <= judgement.tolerance;
    if (isAll || (isIt && pair.from.count > 1)) lost_.push_back({clocks, lost, gap_});
    if (isIt && pair.from.count > 1) return;
  }
  if (!isAll) lost_.push_back({judgement.missing, pair, gap_});
}

// A MAXIMUM of the source may get lost or grow; one that it does not have binds the
// player, and a wait may have become longer than its own.
void WaitComparison::tellMaximum(const WaitPair& pair, const WaitPair::Judgement& judgement) {
  if (pair.to.count == 0) return;
  const double asked = pair.from.sumAt(judgement.rate).maximum;
  const double most = pair.from.count > 0 ? std::min(asked, kAnyHertz) : kAnyHertz;
  const WaitList::Sum given = pair.to.sumAt(judgement.rate);
  const double lasts = given.clocksAt(judgement.rate) / judgement.rate;
  const bool isLonger = judgement.verdict == Verdict::kLonger && lasts > most;
  const bool isNew = most == kAnyHertz && hasMaximum(pair.to) && !hasMaximum(pair.from);
  if (isLonger || isNew || given.maximum * kMostRounded < most) {
    tell(Difference::kBeyondMaximum, lasts, pair);
  } else if (std::min(given.maximum, kAnyHertz) != most) {
    tell(Difference::kMaximumTimes, 0, pair);
  }
}

// What is missing may be left over elsewhere. But what a wait lacks is not made up for
// by another one that is too long.
bool WaitComparison::isMoved(const Open& lost) {
  const auto holds = [&lost](const Open& extra) {
    return extra.clocks > 0 && extra.clocks >= lost.clocks - kLeast &&
           (lost.isWhole() || extra.isWhole());
  };
  const auto extra = std::find_if(extra_.begin(), extra_.end(), holds);
  if (extra == extra_.end()) return false;
  extra->clocks -= lost.clocks;
  tell(Difference::kMovedWaits, lost.clocks, {lost.waits.from, extra->waits.to});
  return true;
}

// Whole waits may be left over on the other side of a scan.
void WaitComparison::endGap() {
  std::erase_if(lost_, [this](const Open& lost) {
    if (isMoved(lost)) return true;
    if (lost.isWhole() && lost.gap == gap_) return false;
    tell(lost.isWhole() ? Difference::kLostWaits : Difference::kShorterWaits, lost.clocks,
         lost.waits);
    return true;
  });
  std::erase_if(extra_, [this](const Open& extra) {
    if (extra.clocks <= kLeast) return true;
    if (extra.gap == gap_) return false;
    tell(Difference::kLongerWaits, extra.clocks, extra.waits);
    return true;
  });
  ++gap_;
}

}  // namespace tapforge_replay

#include "replay/wait_comparison.h"

#include <cmath>

namespace tapforge_replay {
namespace {

using Verdict = WaitPair::Verdict;

constexpr std::size_t kMostOpen = 1000;
constexpr double kMaximumTolerance = 1.005;

WaitList alone(const PlacedWait& wait) { return {{wait}, {}}; }

std::size_t indexOf(const Wait& wait) {
  const bool isPause = wait.state == TapState::kDrPause || wait.state == TapState::kIrPause;
  const bool isSecond = wait.state == TapState::kIdle || wait.state == TapState::kIrPause;
  return (isPause ? 4U : 0U) + (isSecond ? 2U : 0U) + (wait.systemClock ? 1U : 0U);
}

}  // namespace

// A wait is compared with another one alone first, so that the one that differs is
// told. What is left of both files goes together at the end of the place.
void WaitComparison::add(const PlacedWait& wait, bool isConverted) {
  WaitPair& pair = pairs_[indexOf(wait.wait)];
  std::vector<PlacedWait>& others = (isConverted ? pair.from : pair.to).first;
  const auto goesWith = [&](const PlacedWait& other) {
    if (other.wait == wait.wait) return true;
    const WaitPair both{alone(isConverted ? other : wait), alone(isConverted ? wait : other)};
    const WaitPair::Judgement judgement = both.judge(tckHertz_);
    if (judgement.verdict > Verdict::kRounded) return false;
    tell(both, judgement);
    return true;
  };
  const auto found = std::find_if(others.begin(), others.end(), goesWith);
  if (found == others.end()) {
    (isConverted ? pair.to : pair.from).add(wait, isConverted);
  } else {
    others.erase(found);
  }
}

double WaitComparison::missing() const {
  double sum = 0;
  for (const WaitPair& pair : pairs_) sum += pair.isEmpty() ? 0 : pair.judge(tckHertz_).missing;
  return sum;
}

void WaitComparison::endPlace() {
  for (WaitPair& pair : pairs_) {
    if (pair.isEmpty()) continue;
    tell(pair, pair.judge(tckHertz_));
    pair = {};
  }
}

void WaitComparison::tell(const WaitPair& pair, const WaitPair::Judgement& judgement) {
  const auto text = [&pair] { return pair.text(); };
  const bool isShorter = judgement.verdict == Verdict::kShorter;
  limitTo(isShorter && judgement.holdsUpTo == kAnyHertz ? 0 : judgement.holdsUpTo);
  tellMaximum(pair, judgement);
  if (judgement.verdict == Verdict::kRounded) {
    findings_.add(Difference::kRoundedWaits, judgement.missing, text, pair.from.count());
  } else if (judgement.verdict == Verdict::kUnknownRate) {
    findings_.add(Difference::kUnknownRate, judgement.missing, text, pair.from.count());
  } else if (judgement.verdict == Verdict::kLonger) {
    keep(extra_, pair, -judgement.missing);
  } else if (isShorter) {
    tellShorter(pair, judgement);
  }
}

// A MAXIMUM of the source may get lost or grow; one that it does not have binds the
// player, and a wait may have become longer than its own.
void WaitComparison::tellMaximum(const WaitPair& pair, const WaitPair::Judgement& judgement) {
  const auto isAny = [](const WaitList& list, double least, double most) {
    return std::any_of(list.first.begin(), list.first.end(), [=](const PlacedWait& each) {
      return each.wait.maximum >= least && each.wait.maximum <= most;
    });
  };
  const auto text = [&pair] { return pair.text(); };
  double allowed = 0;  // seconds
  for (const PlacedWait& each : pair.from.first) {
    const double most = each.wait.maximum;
    allowed += most < 0 ? kAnyHertz : most;
    if (most >= 0 && !isAny(pair.to, most, most)) findings_.add(Difference::kMaximumTimes, 0, text);
  }
  for (const PlacedWait& each : pair.to.first) {
    const double most = each.wait.maximum;
    if (most < 0 || isAny(pair.from, 0, most * kMaximumTolerance)) continue;
    findings_.add(Difference::kBeyondMaximum, 0, text);
  }
  const double lasts = pair.to.sumAt(judgement.rate).clocksAt(judgement.rate) / judgement.rate;
  if (judgement.verdict == Verdict::kLonger && !pair.from.isEmpty() && lasts > allowed) {
    findings_.add(Difference::kBeyondMaximum, lasts - allowed, text);
  }
}

void WaitComparison::tellShorter(const WaitPair& pair, const WaitPair::Judgement& judgement) {
  const auto clocksOf = [&](const PlacedWait& wait) {
    return alone(wait).sumAt(judgement.rate).clocksAt(judgement.rate);
  };
  const auto isMissing = [&](const PlacedWait& wait) {
    return std::abs(clocksOf(wait) - judgement.missing) <= judgement.tolerance;
  };
  const std::vector<PlacedWait>& waits = pair.from.first;
  const auto one = std::find_if(waits.begin(), waits.end(), isMissing);
  if (pair.to.isEmpty() && pair.from.more.waits == 0) {
    for (const PlacedWait& each : waits) keep(lost_, {alone(each), {}}, clocksOf(each));
  } else if (one != waits.end() && pair.from.count() > 1) {
    keep(lost_, {alone(*one), {}}, judgement.missing);
  } else {
    keep(lost_, pair, judgement.missing);
  }
}

void WaitComparison::keep(std::vector<Open>& list, const WaitPair& pair, double clocks) {
  if (list.size() == kMostOpen) endGap();
  const bool isNew = pair.from.isEmpty();
  list.push_back({clocks, pair.from.text(), pair.to.text(), (isNew ? pair.to : pair.from).count(),
                  isNew || pair.to.isEmpty(), gap_});
}

// What is missing may be left over elsewhere. But what a wait lacks is not made up for
// by another one that is too long.
bool WaitComparison::isFound(const Open& lost) {
  const auto helps = [&lost](const Open& extra) { return lost.isWhole || extra.isWhole; };
  double left = lost.clocks;
  for (const Open& extra : extra_) left -= helps(extra) ? extra.clocks : 0;
  if (left > kClockSlack || left == lost.clocks) return false;
  left = lost.clocks;
  std::string place;
  for (Open& extra : extra_) {
    if (extra.clocks <= 0 || left <= 0 || !helps(extra)) continue;
    if (place.empty()) place = extra.to;
    const double part = std::min(left, extra.clocks);
    extra.clocks -= part;
    left -= part;
  }
  findings_.add(
      Difference::kMovedWaits, lost.clocks,
      [&] { return "source " + lost.from + ", now part of converted " + place; }, lost.waits);
  return true;
}

// Whole waits may be left over on the other side of a scan.
void WaitComparison::endGap() {
  const auto tell = [this](Difference difference, const Open& open) {
    findings_.add(
        difference, open.clocks,
        [&open] { return "source " + open.from + ", converted " + open.to; }, open.waits);
  };
  std::erase_if(lost_, [&](const Open& lost) {
    if (isFound(lost)) return true;
    if (lost.isWhole && lost.gap == gap_) return false;
    tell(lost.isWhole ? Difference::kLostWaits : Difference::kShorterWaits, lost);
    return true;
  });
  std::erase_if(extra_, [&](const Open& extra) {
    if (extra.gap == gap_) return extra.clocks <= kClockSlack;
    if (extra.clocks > kClockSlack) tell(Difference::kLongerWaits, extra);
    return true;
  });
  ++gap_;
}

}  // namespace tapforge_replay

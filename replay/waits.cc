#include "replay/waits.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "replay/fault.h"

namespace tapforge_replay {
namespace {

constexpr std::int64_t kParts = 1000000000000000000;  // of a second
constexpr std::int64_t kMostSum = std::int64_t{1} << 53;
constexpr double kUsualHertz = 1e6;  // to tell amounts where no rate is known
constexpr double kTimeTolerance = 0.005;
constexpr double kClockTolerance = 1e-7;
constexpr std::size_t kMostFirst = 32;

// From the digits of the shortest text that is this number.
void setTime(double value, Amount& time) {
  std::array<char, 400> text{};
  const char* const end =
      std::to_chars(text.begin(), text.end(), value, std::chars_format::fixed).ptr;
  const char* at = std::from_chars(text.begin(), end, time.seconds).ptr;  // then a point
  for (std::int64_t unit = kParts / 10; unit > 0 && at + 1 < end; unit /= 10) {
    time.parts += (*++at - '0') * unit;
  }
}

}  // namespace

void Amount::add(const Amount& more) {
  clocks += more.clocks;
  seconds += more.seconds;
  parts += more.parts;
  if (parts >= kParts) {
    parts -= kParts;
    ++seconds;
  }
  waits += more.waits;
  times += more.times;
  hertz = std::max(hertz, more.hertz);
  if (clocks > kMostSum || seconds > kMostSum) throw Fault("waits that are too long to be added");
}

double Amount::clocksAt(double rate) const {
  return std::fma(static_cast<double>(seconds), rate, static_cast<double>(clocks)) +
         static_cast<double>(parts) / static_cast<double>(kParts) * rate;
}

PlacedWait::PlacedWait(const Wait& what, const Place& where, double hertz)
    : wait{what}, place{where}, clocks{.waits = 1, .hertz = hertz}, time{clocks} {
  if (wait.clocks >= 0) clocks.clocks = static_cast<std::int64_t>(std::ceil(wait.clocks));
  if (wait.seconds >= 0) setTime(wait.seconds, time);
  time.times = 1;
}

// Where there are many, of one that asks for both no more is known than that it is no
// longer than one after the other, and no shorter than its clocks.
void WaitList::add(const PlacedWait& wait, bool isConverted) {
  if (first.size() < kMostFirst) {
    first.push_back(wait);
  } else if (wait.wait.clocks < 0) {
    more.add(wait.time);
  } else {
    more.add(wait.clocks);
    if (!isConverted && wait.wait.seconds >= 0) more.add(wait.time);
  }
}

Amount WaitList::sumAt(double rate) const {
  Amount sum = more;
  for (const PlacedWait& each : first) {
    sum.add(each.wait.clocks < each.wait.seconds * rate ? each.time : each.clocks);
  }
  return sum;
}

std::string WaitList::text() const {
  if (isEmpty()) return "(none)";
  const std::string others = count() > 1 ? " and " + std::to_string(count() - 1) + " more" : "";
  return describe(first[0].place) + " (" + describe(first[0].wait) + others + ")";
}

std::string WaitPair::text() const { return "source " + from.text() + ", converted " + to.text(); }

double WaitPair::missingAt(double rate) const {
  Amount sum = from.sumAt(rate);
  const Amount given = to.sumAt(rate);
  sum.clocks -= given.clocks;
  sum.seconds -= given.seconds;
  sum.parts -= given.parts;
  return sum.clocksAt(rate);
}

// Times that stayed times have lost digits, those that became clocks a part of one;
// clocks may lose nothing.
double WaitPair::toleranceAt(double rate) const {
  if (to.isEmpty()) return 0;  // lost
  Amount times = from.sumAt(rate);
  times.clocks = 0;
  const double clocks = times.clocksAt(rate);
  if (to.sumAt(rate).times > 0) return clocks * kTimeTolerance;
  return std::max(static_cast<double>(times.times), clocks * kClockTolerance);
}

WaitPair::Judgement WaitPair::judge(double tckHertz) const {
  Judgement result;
  const bool isSystem = (from.isEmpty() ? to : from).first[0].wait.systemClock;
  const bool isTime = to.sumAt(kAnyHertz).times > 0;
  double limit = tckHertz > 0 ? tckHertz : from.sumAt(0).hertz;
  if (isSystem || from.isEmpty()) limit = kAnyHertz;
  const bool becameClocks = !isTime && !isSystem && !to.isEmpty() && missingAt(0) <= kClockSlack;
  if (becameClocks && missingAt(kAnyHertz) > kClockSlack) {
    double beyond = kAnyHertz;
    result.holdsUpTo = 0;
    for (int i = 0; i < 100; ++i) {
      const double middle = (result.holdsUpTo + beyond) / 2;
      (missingAt(middle) > kClockSlack ? beyond : result.holdsUpTo) = middle;
    }
    if (limit == kAnyHertz) result.verdict = Verdict::kUnknownRate;
  }
  result.rate = limit < kAnyHertz ? limit : kUsualHertz;
  result.missing = missingAt(result.rate);
  result.tolerance = toleranceAt(result.rate) + kClockSlack;
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
    if (missing <= kClockSlack) continue;
    const bool isRounded = missing <= toleranceAt(rate) + kClockSlack;
    result.verdict = std::max(result.verdict, isRounded ? Verdict::kRounded : Verdict::kShorter);
    if (rate <= result.rate) result.missing = std::max(result.missing, missing);
  }
  const double more = isTime ? kClockSlack : result.tolerance;  // a time is not rounded up
  if (result.verdict == Verdict::kSame && -result.missing > more) {
    result.verdict = Verdict::kLonger;
  }
  return result;
}

}  // namespace tapforge_replay

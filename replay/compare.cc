#include "replay/compare.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>

#include "replay/fault.h"
#include "replay/output.h"

namespace tapforge_replay {
namespace {

using Kind = Operation::Kind;

constexpr const char* kNotCompared = "; what follows was not compared";
constexpr std::size_t kMostDigits = 16;        // of a value in a message
constexpr double kHertzTolerance = 1.0000001;  // of digits that a FREQUENCY has lost

// How often, and where for the first time, words of a scan have a 1.
struct BitCount {
  std::uint64_t count = 0;
  std::size_t first = 0;

  void add(std::uint64_t word, std::size_t index) {
    if (word == 0) return;
    if (count == 0) {
      first = index * Bits::kWordBits + static_cast<std::size_t>(std::countr_zero(word));
    }
    count += static_cast<std::uint64_t>(std::popcount(word));
  }
};

}  // namespace

std::string Comparison::Side::text() const {
  return describe(operation.place) + " (" + printable(describe(operation, kMostDigits)) + ")";
}

void Comparison::tell(Difference difference, const std::string& from, const std::string& to) {
  findings_.add(difference, 0, [&] { return "source " + from + ", converted " + to; });
}

void Comparison::run() {
  for (const Side* side : {&source_, &converted_}) {
    if (side->reader.beginsWithReset()) source_.isFresh = converted_.isFresh = false;
  }
  try {
    source_.next();
    converted_.next();
    do {
      compareGap();
    } while (compareScans());
    waits_.endGap();  // nothing more can be found
  } catch (const NotPlayable& fault) {
    if (!converted_.isReading) throw;
    tell(Difference::kNotPlayable, source_.text(), fault.where + kNotCompared);
  }
  source_.skipToEnd();
  if (source_.scans == 0) tell(Difference::kNoScans, kNowhere, kNowhere);
}

void Comparison::compareGap() {
  isAway_ = false;
  for (Side* side : {&source_, &converted_}) side->resets = side->shifts = 0;
  while (true) {
    bool isPassed = false;
    for (Side* side : {&source_, &converted_}) {
      const bool isState = isAway_ && side->kind == Kind::kMove;
      isPassed = isPassed || isState || side->kind == Kind::kWait;
      if (side->kind == Kind::kWait) takeWait(*side);
      if (!isState) continue;
      side->resets += side->state == TapState::kReset ? 1 : 0;
      const bool isShift = side->state == TapState::kDrShift || side->state == TapState::kIrShift;
      side->shifts += isShift ? 1 : 0;
      side->next();
    }
    if (isPassed) continue;
    if (source_.isGapOver() && converted_.isGapOver()) break;
    if (source_.isSetting() || converted_.isSetting()) {
      compareSettings();
    } else {
      compareStates();
    }
  }
  if (!isRateCompared_) compareRates();
  waits_.endPlace();
  waits_.endGap();
  // Another scan, or the end in place of one, is told as that.
  if (isAway_ && isSameScan()) {
    const bool isMove =
        isMove_ || source_.resets != converted_.resets || source_.shifts != converted_.shifts;
    tell(isMove ? Difference::kStateMoves : Difference::kEndStates, source_.detour,
         converted_.detour);
  }
}

void Comparison::takeWait(Side& side) {
  const bool isConverted = &side == &converted_;
  if (!isRateCompared_) compareRates();
  // Without its FREQUENCY a wait for clocks is as short as the clock is fast.
  const bool isTck = side.wait.clocks > 0 && !side.wait.systemClock;
  if (!isConverted && isTck && converted_.frequency == kNowhere) waits_.limitTo(side.hertz);
  waits_.add({side.wait, side.operation.place, side.hertz}, isConverted);
  side.next();
}

void Comparison::compareStates() {
  if (!isRateCompared_) compareRates();
  waits_.endPlace();
  if (source_.kind == converted_.kind && source_.state == converted_.state) {
    source_.next();
    converted_.next();
  } else {
    isAway_ = true;
    isMove_ = source_.operation.kind == Kind::kMove || converted_.operation.kind == Kind::kMove;
    source_.detour = source_.text();
    converted_.detour = converted_.text();
  }
}

// A setting that both files have divides places. One that only one of them has does
// not, so that nothing else seems to have moved.
void Comparison::compareSettings() {
  const Operation& from = source_.operation;
  const Operation& to = converted_.operation;
  const bool isKind = source_.kind == converted_.kind;
  // A FREQUENCY may have lost a part of a Hz, or digits that a float cannot hold.
  const bool isNear = std::abs(from.hertz - to.hertz) < 1 + from.hertz * (kHertzTolerance - 1);
  const bool isSame = isKind && (from.kind == Kind::kFrequency ? isNear : from.word == to.word);
  const bool isBoth = isSame || (isKind && waits_.isEven());
  const bool isLost = source_.isSetting() && !isBoth;
  const Operation& setting = isLost ? from : to;
  const auto isOn = [](const Operation& operation) {
    return operation.kind == Kind::kResetLine && operation.word == "on";
  };
  isResetUsed_ = isResetUsed_ || isOn(setting) || (isBoth && isOn(from));
  if (isBoth) waits_.endPlace();
  if (!isSame && setting.kind != Kind::kFrequency) {  // which is compared where it is in force
    tell(setting.kind == Kind::kParallelIo ? Difference::kParallelIo
         : isResetUsed_                    ? Difference::kResetLine
                                           : Difference::kResetLineOff,
         isBoth || isLost ? source_.text() : kNowhere, isLost ? kNowhere : converted_.text());
  }
  if (isBoth || isLost) passSetting(source_);
  if (!isLost) passSetting(converted_);
}

void Comparison::passSetting(Side& side) {
  if (side.operation.kind == Kind::kFrequency) {
    side.hertz = side.operation.hertz > 0 ? side.operation.hertz : kAnyHertz;
    side.frequency = side.text();
    isRateCompared_ = false;
  }
  side.next();
}

void Comparison::compareRates() {
  isRateCompared_ = true;
  const bool isSaid = converted_.frequency != kNowhere;
  const double fastest = isSaid ? converted_.hertz : tckHertz_;
  if (fastest > source_.hertz * kHertzTolerance) {
    tell(Difference::kTooFast, source_.frequency, converted_.frequency);
  } else if (converted_.hertz != source_.hertz) {
    tell(Difference::kFrequency, source_.frequency, converted_.frequency);
  }
}

// Or the end of both files.
bool Comparison::isSameScan() const {
  const Operation& from = source_.operation;
  const Operation& to = converted_.operation;
  return source_.kind == converted_.kind &&
         (source_.kind == Kind::kEnd ||
          (from.instruction == to.instruction && from.tdi->size() == to.tdi->size()));
}

bool Comparison::compareScans() {
  const bool isSame = isSameScan();
  if (!isSame) {
    tell(Difference::kScans, source_.text(), converted_.text() + kNotCompared);
    converted_.skipToEnd();
  }
  if (!isSame || source_.kind == Kind::kEnd) return false;
  compareBits();
  source_.next();
  converted_.next();
  return true;
}

void Comparison::compareBits() {
  const Operation& from = source_.operation;
  const Operation& to = converted_.operation;
  const auto wordOf = [](const Bits* bits, std::size_t i, std::uint64_t otherwise) {
    return bits != nullptr ? bits->word(i) : otherwise;
  };
  const std::uint64_t all = ~std::uint64_t{0};
  const std::size_t words = from.tdi->wordCount();
  const std::size_t above = words * Bits::kWordBits - from.tdi->size();
  BitCount tdi, tdo, less, more, open;
  for (std::size_t i = 0; i < words; ++i) {
    const std::uint64_t care = wordOf(from.care, i, all);
    const std::uint64_t wanted = wordOf(from.mask, i, 0);
    const std::uint64_t seen = wordOf(to.mask, i, 0);
    tdi.add((from.tdi->word(i) ^ to.tdi->word(i)) & care, i);
    less.add(wanted & ~seen, i);
    more.add(seen & ~wanted, i);
    tdo.add((wordOf(from.tdo, i, 0) ^ wordOf(to.tdo, i, 0)) & wanted & seen, i);
    const std::uint64_t inside = i + 1 == words ? all >> above : all;
    open.add(care & inside & ~wordOf(to.care, i, all), i);
  }
  const auto add = [&](Difference difference, const BitCount& bits, const char* what) {
    if (bits.count == 0) return;
    findings_.add(difference, static_cast<double>(bits.count), [&] {
      return "scan " + std::to_string(from.number) + ", source " + describe(from.place) +
             ", converted " + describe(to.place) + ": " + what +
             (bits.count == 1 ? "bit " : std::to_string(bits.count) + " bits from bit ") +
             std::to_string(bits.first);
    });
  };
  add(Difference::kCare, open, "");
  add(Difference::kComparedLess, less, "");
  add(Difference::kComparedMore, more, "");
  add(Difference::kScans, tdi, "TDI differs in ");
  if (tdi.count == 0) add(Difference::kScans, tdo, "expected TDO differs in ");
}

std::string Comparison::report() const {
  using enum Difference;
  const auto counted = [](std::uint64_t count, const char* what) {
    return ", " + std::to_string(count) + what + (count == 1 ? "" : "s");
  };
  std::string text;
  for (const Side* side : {&source_, &converted_}) {
    const bool isSource = side == &source_;
    text += (isSource ? "source:    " : "converted: ") + std::string(side->reader.form()) +
            counted(side->scans, " scan") + (isSource ? counted(side->waits, " wait") : "") + "\n";
    for (const std::string& note : side->reader.notes()) text += "  note: " + note + "\n";
  }
  const double most = waits_.holdsUpTo();
  const bool isRated = most > 0 && most < kAnyHertz;
  if (isRated && tckHertz_ > 0) {
    text += "times as clocks: at " + numberText(tckHertz_) + " Hz\n";
  } else if (isRated && findings_[kUnknownRate].count == 0) {
    text += "times as clocks: at the FREQUENCY of the source\n";
  }
  if (isRated && (tckHertz_ <= 0 || tckHertz_ > most)) {
    text += "holds for a TCK of at most " + numberText(std::floor(most)) +
            (tckHertz_ > 0 ? " Hz\n" : " Hz; say -tck_freq\n");
  }
  const auto isSame = [&](const char* what, Difference from, Difference before) {
    for (auto i = static_cast<std::size_t>(from); i < static_cast<std::size_t>(before); ++i) {
      if (findings_[static_cast<Difference>(i)].count > 0) return false;
    }
    text.append(what).append(": all the same\n");
    return true;
  };
  if (isSame("scans", kScans, kNoScans)) {
    isSame("waits", kUnknownRate, kBeyondMaximum);
    isSame("states", kStateMoves, kResetLine);
  }
  return text + findings_.text();
}

}  // namespace tapforge_replay

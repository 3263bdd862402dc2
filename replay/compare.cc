#include "replay/compare.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <initializer_list>

#include "replay/fault.h"
#include "replay/scans.h"

namespace tapforge_replay {
namespace {

using Kind = Operation::Kind;
using Step = Steps::Kind;

constexpr std::size_t kMostStates = 8;         // in a message
constexpr double kHertzTolerance = 1.0000001;  // of digits that a FREQUENCY has lost

}  // namespace

std::string Comparison::Side::hertzText() const {
  if (!isHertzSaid) return "(none)";
  return describe(hertzPlace) + (hertz < kAnyHertz ? " (" + numberText(hertz) + " Hz)" : "");
}

std::string Comparison::Side::detourText(TapState before, std::size_t tail) const {
  std::string text = describe(detourPlace) + " (" + std::string(nameOf(before));
  const std::size_t count = detour.size() - tail + (tail > 0 ? 1 : 0);
  for (std::size_t i = 0; i < std::min(count, kMostStates); ++i) {
    text.append(" ").append(nameOf(detour[i]));
  }
  return text + (count > kMostStates ? " ...)" : ")");
}

void Comparison::run() {
  try {
    source_.next();
    converted_.next();
    do {
      compareGap();
    } while (compareScans());
    waits_.endGap();
  } catch (const NotPlayable& fault) {
    if (!converted_.isReading) throw;
    isStopped_ = true;
    findings_.add(Difference::kNotPlayable, 0,
                  [&] { return "converted " + fault.where + "; what follows was not compared"; });
  }
  source_.skipToEnd();
  if (source_.scans == 0) findings_.add(Difference::kNoScans, 0, [] { return "source"; });
}

void Comparison::compareGap() {
  isAway_ = false;
  while (true) {
    const bool isWait = source_.kind == Step::kWait || converted_.kind == Step::kWait;
    takeWait(source_);
    takeWait(converted_);
    if (isWait) continue;
    const bool isPassed = passState(source_);
    if (passState(converted_) || isPassed) continue;
    if (source_.isGapOver() && converted_.isGapOver()) break;
    if (source_.kind == Step::kSetting || converted_.kind == Step::kSetting) {
      compareSettings();
    } else {
      compareStates();
    }
  }
  compareRates();
  waits_.endPlace();
  waits_.endGap();
  if (isAway_) tellDetour();
}

void Comparison::takeWait(Side& side) {
  if (side.kind != Step::kWait) return;
  const bool isConverted = &side == &converted_;
  if (!isConverted) compareRates();
  // Without its FREQUENCY a wait for clocks is as short as the clock is fast.
  const bool isTck = side.wait.clocks > 0 && !side.wait.systemClock;
  if (!isConverted && isTck && !converted_.isHertzSaid) waits_.limitTo(side.hertz);
  waits_.add({side.wait, side.operation.place, side.hertz}, isConverted);
  side.next();
}

void Comparison::compareStates() {
  compareRates();
  const bool isState = source_.kind == converted_.kind;
  if (isState && source_.state == converted_.state) {
    waits_.endPlace();
    last_ = source_.state;
    source_.next();
    converted_.next();
  } else if (source_.isImplied || converted_.isImplied) {
    (source_.isImplied ? source_ : converted_).next();
  } else {
    waits_.endPlace();
    isAway_ = true;
    isMove_ = source_.operation.kind == Kind::kMove || converted_.operation.kind == Kind::kMove;
    for (Side* side : {&source_, &converted_}) {
      side->detour.clear();
      side->detourPlace = side->operation.place;
    }
  }
}

bool Comparison::passState(Side& side) {
  if (!isAway_ || side.kind != Step::kState) return false;
  if (side.detour.size() <= kMostStates) side.detour.push_back(side.state);
  side.next();
  return true;
}

void Comparison::tellDetour() {
  const bool isScan = source_.kind == Step::kScan && converted_.kind == Step::kScan;
  const bool isAlike = isScan ? source_.operation.instruction == converted_.operation.instruction
                              : source_.kind == converted_.kind;
  if (!isAlike) return;  // that is told of the scans
  findings_.add(isMove_ ? Difference::kStateMoves : Difference::kEndStates, 0, [this] {
    const auto& from = source_.detour;
    const auto& to = converted_.detour;
    const auto tails = std::mismatch(from.rbegin(), from.rend(), to.rbegin(), to.rend());
    const bool isAll = from.size() <= kMostStates && to.size() <= kMostStates;
    const auto tail = isAll ? static_cast<std::size_t>(tails.first - from.rbegin()) : 0;
    return "source " + source_.detourText(last_, tail) + ", converted " +
           converted_.detourText(last_, tail);
  });
}

// Settings divide places when both files have them. One that only one file has does
// not, so that nothing else seems to have moved.
void Comparison::compareSettings() {
  const Operation& from = source_.operation;
  const Operation& to = converted_.operation;
  const bool isBoth = source_.kind == converted_.kind && from.kind == to.kind;
  const bool isEqual =
      isBoth && (from.kind == Kind::kFrequency ? from.hertz == to.hertz : from.word == to.word);
  const double missing = isEqual ? 0 : waits_.missing();
  if (isEqual || (isBoth && std::abs(missing) <= kClockSlack)) {
    waits_.endPlace();
    if (!isEqual) tellSettings(&source_, &converted_);
    passSetting(source_);
    passSetting(converted_);
    return;
  }
  // The file that has waited less so far goes on.
  const bool isLost = source_.kind == Step::kSetting &&
                      (converted_.kind != Step::kSetting || missing <= kClockSlack);
  tellSettings(isLost ? &source_ : nullptr, isLost ? nullptr : &converted_);
  passSetting(isLost ? source_ : converted_);
}

void Comparison::tellSettings(const Side* from, const Side* to) {
  const Operation& setting = (from != nullptr ? from : to)->operation;
  if (setting.kind == Kind::kFrequency) return;  // compared where it is in force
  const auto isOn = [](const Side* side) {
    return side != nullptr && side->operation.word == "on";
  };
  isResetUsed_ = isResetUsed_ || isOn(from) || isOn(to);
  const auto difference = setting.kind == Kind::kParallelIo ? Difference::kParallelIo
                          : isResetUsed_                    ? Difference::kResetLine
                                                            : Difference::kResetLineOff;
  const auto place = [](const Side* side) {
    return side != nullptr ? describe(side->operation.place) : "(none)";
  };
  findings_.add(difference, 0,
                [&] { return "source " + place(from) + ", converted " + place(to); });
}

void Comparison::passSetting(Side& side) {
  const Operation& setting = side.operation;
  if (setting.kind == Kind::kFrequency) {
    side.hertz = setting.hertz < 0 ? kAnyHertz : setting.hertz;
    side.hertzPlace = setting.place;
    side.isHertzSaid = true;
    isRateCompared_ = false;
  }
  isResetUsed_ = isResetUsed_ || setting.word == "on";
  side.next();
}

void Comparison::compareRates() {
  if (isRateCompared_) return;
  isRateCompared_ = true;
  const double limit = source_.hertz;
  const double rate = converted_.isHertzSaid ? converted_.hertz : limit;
  const double board = converted_.isHertzSaid ? 0 : tckHertz_;
  const auto text = [this] {
    return "source " + source_.hertzText() + ", converted " + converted_.hertzText();
  };
  if (std::max(rate, board) > limit * kHertzTolerance) {
    findings_.add(Difference::kTooFast, 0, text);
  } else if (rate != limit || (!converted_.isHertzSaid && limit < kAnyHertz)) {
    findings_.add(Difference::kFrequency, 0, text);
  }
}

bool Comparison::compareScans() {
  const bool isSourceOver = source_.kind == Step::kEnd;
  const bool isConvertedOver = converted_.kind == Step::kEnd;
  if (isSourceOver && isConvertedOver) return false;
  const Operation& from = source_.operation;
  const Operation& to = converted_.operation;
  const auto text = [](const Side& side) {
    if (side.kind == Step::kEnd) return std::string("(none)");
    const Operation& scan = side.operation;
    return describe(scan.place) + (scan.instruction ? " (IR of " : " (DR of ") +
           std::to_string(scan.tdi->size()) + " bits)";
  };
  if (isSourceOver || isConvertedOver || from.instruction != to.instruction ||
      from.tdi->size() != to.tdi->size()) {
    findings_.add(Difference::kScans, 0, [&] {
      return "scan " + std::to_string((isSourceOver ? to : from).number) + ", source " +
             text(source_) + ", converted " + text(converted_) + "; what follows was not compared";
    });
    isStopped_ = true;
    converted_.skipToEnd();
    return false;
  }
  compareBits(from, to, findings_);
  source_.next();
  converted_.next();
  return true;
}

std::string Comparison::rateText() const {
  const double most = waits_.holdsUpTo();
  if (most <= 0 || most == kAnyHertz) return {};
  std::string text;
  if (tckHertz_ > 0) {
    text = "times as clocks: at " + numberText(tckHertz_) + " Hz\n";
    if (tckHertz_ <= most) return text;
  } else if (findings_[Difference::kUnknownRate].count == 0) {
    text = "times as clocks: at the FREQUENCY of the source\n";
  }
  return text + "holds for a TCK of at most " + numberText(std::floor(most)) + " Hz" +
         (tckHertz_ > 0 ? "\n" : "; say -tck_freq\n");
}

std::string Comparison::report() const {
  using enum Difference;
  const auto counted = [](std::uint64_t count, const char* what) {
    return ", " + std::to_string(count) + what + (count == 1 ? "" : "s");
  };
  std::string text = "source:    ";
  text.append(source_.reader.form()).append(counted(source_.scans, " scan"));
  text.append(counted(source_.waits, " wait")).append("\nconverted: ");
  text.append(converted_.reader.form()).append(counted(converted_.scans, " scan")).append("\n");
  for (const Side* side : {&source_, &converted_}) {
    for (const std::string& note : side->reader.notes()) {
      text.append("note: ").append(side == &source_ ? "source: " : "converted: ");
      text.append(note).append("\n");
    }
  }
  text += rateText();
  const auto isNone = [this](std::initializer_list<Difference> differences) {
    return std::none_of(differences.begin(), differences.end(),
                        [this](Difference difference) { return findings_[difference].count > 0; });
  };
  if (isNone({kScans, kNotPlayable})) {
    text += "scans: all the same\n";
    if (isNone({kUnknownRate, kShorterWaits, kLostWaits, kMovedWaits, kRoundedWaits, kBeyondMaximum,
                kLongerWaits})) {
      text += "waits: all the same\n";
    }
    if (isNone({kStateMoves, kEndStates})) text += "states: all the same\n";
  }
  return text + findings_.text();
}

}  // namespace tapforge_replay

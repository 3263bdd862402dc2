#include "replay/compare.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <utility>

namespace tapforge_replay {
namespace {

using Kind = Operation::Kind;

constexpr std::size_t kMostInGap = 10000;  // states, or waits
constexpr std::size_t kMostStates = 8;     // in a message

// The part of a walk in which it differs from another one, with the states around.
std::string partOf(const std::vector<TapState>& walk, std::size_t from, std::size_t to) {
  std::string text;
  for (std::size_t i = from; i < to; ++i) {
    if (i - from == kMostStates) return text + " ...";
    text.append(text.empty() ? "" : " ").append(nameOf(walk[i]));
  }
  return text;
}

// How often, and where for the first time, words of a scan have a 1.
struct BitCount {
  std::uint64_t count = 0;
  std::size_t first = 0;

  void add(std::uint64_t word, std::size_t index) {
    if (word == 0) return;
    if (count == 0)
      first = index * Bits::kWordBits + static_cast<std::size_t>(std::countr_zero(word));
    count += static_cast<std::uint64_t>(std::popcount(word));
  }
  std::string text() const {
    return count == 1 ? "bit " + std::to_string(first)
                      : std::to_string(count) + " bits from bit " + std::to_string(first);
  }
};

const char* registerOf(const Operation& scan) { return scan.instruction ? "IR" : "DR"; }

}  // namespace

void Comparison::Gap::begin(const Operation& operation) {
  origins.push_back({walk.size(), operation.kind, operation.place});
}

void Comparison::Gap::clear() {
  walk.clear();
  origins.clear();
  waits.clear();
  settings.clear();
}

const Comparison::Gap::Origin* Comparison::Gap::originOf(std::size_t position) const {
  const Origin* found = nullptr;
  for (const Origin& origin : origins) {
    if (origin.position <= position) found = &origin;
  }
  return found;
}

void Comparison::Gap::enter(const std::vector<TapState>& states) {
  for (const TapState state : states) {
    // Clocks that stay in a stable state do nothing; in a shift state each shifts a bit.
    if (walk.empty() || walk.back() != state || !isStable(state)) walk.push_back(state);
  }
}

void Comparison::Gap::wait(const Wait& wait, const Place& place) {
  const bool again =
      !waits.empty() && waits.back().position == walk.size() && waits.back().wait == wait;
  if (again) {
    ++waits.back().times;
  } else {
    waits.push_back({wait, walk.size(), place});
  }
}

void Comparison::Side::readGap() {
  while (inGap() && gap.walk.size() < kMostInGap && gap.waits.size() < kMostInGap &&
         gap.settings.size() < kMostInGap) {
    reader.next(operation);
    switch (operation.kind) {
      case Kind::kScan:
        gap.begin(operation);
        gap.enter(operation.before);
        atScan = true;
        scan = operation.place;
        ++scans;
        break;
      case Kind::kWait:
        gap.begin(operation);
        gap.enter(operation.before);
        gap.wait(operation.wait, operation.place);
        gap.enter(operation.after);
        break;
      case Kind::kMove:
        gap.begin(operation);
        gap.enter(operation.before);
        break;
      case Kind::kFrequency:
        gap.settings.push_back(
            {operation.kind, numberText(operation.hertz), operation.place, operation.hertz});
        break;
      case Kind::kResetLine:
        if (operation.word == "absent") break;  // there is none to be set
        [[fallthrough]];
      case Kind::kParallelIo:
        gap.settings.push_back({operation.kind, operation.word, operation.place});
        break;
      case Kind::kEndState:  // seen in the moves after the scans
        break;
      case Kind::kEnd:
        ended = true;
        break;
    }
  }
}

void Comparison::Side::passScan() {
  atScan = false;
  gap.begin(operation);
  gap.enter(operation.after);
}

void Comparison::run() {
  source_.gap.walk = converted_.gap.walk = {TapState::kReset};
  while (!stopped_) {
    source_.readGap();
    for (const Setting& setting : source_.gap.settings) {
      if (setting.kind == Kind::kFrequency) rate_.suggest(setting.hertz);
    }
    converted_.readGap();
    compareGaps();
    source_.gap.clear();
    converted_.gap.clear();
    if (source_.inGap() || converted_.inGap()) continue;
    if (source_.ended && converted_.ended) break;
    if (!compareScans()) break;
  }
  waits_.finish();
  if (const auto lines = converted_.reader.sharedLines(); lines.count > 0) {
    findings_.add(
        Difference::kSharedLines, 0, [&] { return "converted " + describe(lines.first); },
        lines.count);
  }
}

void Comparison::compareGaps() {
  const bool differentEnds =  // that is told of the scans
      source_.atScan && converted_.atScan
          ? source_.operation.instruction != converted_.operation.instruction
          : source_.ended != converted_.ended;
  if (!differentEnds && source_.gap.walk != converted_.gap.walk) compareWalks();
  waits_.compare(source_.gap.waits, converted_.gap.waits);
  if (source_.gap.settings.empty() && converted_.gap.settings.empty()) return;
  for (const Side* side : {&source_, &converted_}) {
    for (const Setting& setting : side->gap.settings) {
      if (setting.kind == Kind::kResetLine && setting.value == "on") resetUsed_ = true;
    }
  }
  compareSettings(Kind::kResetLine,
                  resetUsed_ ? Difference::kResetLine : Difference::kResetLineOff);
  compareSettings(Kind::kParallelIo, Difference::kParallelIo);
  compareSettings(Kind::kFrequency, Difference::kFrequency);
}

void Comparison::compareWalks() {
  const std::vector<TapState>& from = source_.gap.walk;
  const std::vector<TapState>& to = converted_.gap.walk;
  const auto heads = std::mismatch(from.begin(), from.end(), to.begin(), to.end());
  const auto same = heads.first - from.begin();
  const auto first = static_cast<std::size_t>(same);
  const Gap::Origin* const source = source_.gap.originOf(first);
  const Gap::Origin* const converted = converted_.gap.originOf(first);
  const auto text = [&] {
    const auto tails =
        std::mismatch(from.rbegin(), from.rend() - same, to.rbegin(), to.rend() - same);
    const auto tail = static_cast<std::size_t>(tails.first - from.rbegin());
    const std::size_t before = first > 0 ? 1 : 0;  // a state that both have, for context
    const std::size_t after = tail > 0 ? 1 : 0;
    const auto place = [](const Gap::Origin* origin) {
      return origin != nullptr ? describe(origin->place) : "start";
    };
    return "source " + place(source) + " (" +
           partOf(from, first - before, from.size() - tail + after) + "), converted " +
           place(converted) + " (" + partOf(to, first - before, to.size() - tail + after) + ")";
  };
  const auto isMove = [](const Gap::Origin* origin) {
    return origin != nullptr && origin->kind == Kind::kMove;
  };
  const bool moved = isMove(source) || isMove(converted);
  findings_.add(moved ? Difference::kStateMoves : Difference::kEndStates, 0, text);
}

void Comparison::compareSettings(Kind kind, Difference difference) {
  const auto next = [kind](const std::vector<Setting>& settings, std::size_t at) {
    while (at < settings.size() && settings[at].kind != kind) ++at;
    return at;
  };
  const std::vector<Setting>& from = source_.gap.settings;
  const std::vector<Setting>& to = converted_.gap.settings;
  std::size_t i = next(from, 0);
  std::size_t j = next(to, 0);
  while (i < from.size() || j < to.size()) {
    const bool same = i < from.size() && j < to.size() && from[i].value == to[j].value;
    if (!same) {
      findings_.add(difference, 0, [&] {
        const std::string left = i < from.size() ? describe(from[i].place) : "(none)";
        return "source " + left + ", converted " +
               (j < to.size() ? describe(to[j].place) : "(none)");
      });
    }
    i = next(from, i < from.size() ? i + 1 : i);
    j = next(to, j < to.size() ? j + 1 : j);
  }
}

std::string Comparison::where() const {
  const auto place = [](const Side& side) {
    return side.atScan ? describe(side.scan) : std::string("(no more)");
  };
  return "scan " + std::to_string(std::max(source_.scans, converted_.scans)) + ", source " +
         place(source_) + ", converted " + place(converted_);
}

void Comparison::countRest(Side& side) {
  while (!side.ended) {
    side.gap = {};
    if (side.atScan) side.passScan();
    side.readGap();
  }
}

void Comparison::endAtDifferentScan(const std::string& text) {
  findings_.add(Difference::kScans, 0, [&] { return where() + ": " + text; });
  countRest(source_);
  countRest(converted_);
  stopped_ = true;
}

bool Comparison::compareScans() {
  const Operation& from = source_.operation;
  const Operation& to = converted_.operation;
  if (source_.ended || converted_.ended) {
    endAtDifferentScan(source_.ended ? "not in the source" : "not in the converted file");
    return false;
  }
  if (from.instruction != to.instruction || from.tdi->size() != to.tdi->size()) {
    endAtDifferentScan(registerOf(from) + (" of " + std::to_string(from.tdi->size())) +
                       " bits became " + registerOf(to) + " of " + std::to_string(to.tdi->size()) +
                       "; what follows was not compared");
    return false;
  }

  const auto word = [](const Bits* bits, std::size_t i, std::uint64_t otherwise) {
    return bits != nullptr ? bits->word(i) : otherwise;
  };
  const std::uint64_t all = ~std::uint64_t{0};
  const std::size_t bitsOfLast = from.tdi->size() % Bits::kWordBits;
  const std::uint64_t last = bitsOfLast == 0 ? all : (std::uint64_t{1} << bitsOfLast) - 1;
  BitCount tdi;
  BitCount tdo;
  BitCount less;
  BitCount more;
  BitCount open;
  for (std::size_t i = 0; i < from.tdi->wordCount(); ++i) {
    const std::uint64_t care = word(from.care, i, all);
    const std::uint64_t wanted = word(from.mask, i, 0);
    const std::uint64_t seen = word(to.mask, i, 0);
    tdi.add((from.tdi->word(i) ^ to.tdi->word(i)) & care, i);
    less.add(wanted & ~seen, i);
    more.add(seen & ~wanted, i);
    tdo.add((word(from.tdo, i, 0) ^ word(to.tdo, i, 0)) & wanted & seen, i);
    const std::uint64_t inside = i + 1 == from.tdi->wordCount() ? last : all;
    if (to.care != nullptr) open.add(care & inside & ~to.care->word(i), i);
  }
  const auto add = [this](Difference difference, const BitCount& bits, const char* what) {
    if (bits.count == 0) return;
    findings_.add(difference, static_cast<double>(bits.count),
                  [&] { return where() + ": " + what + bits.text(); });
  };
  add(Difference::kCare, open, "");
  add(Difference::kComparedLess, less, "");
  add(Difference::kComparedMore, more, "");
  if (tdi.count > 0) {
    findings_.add(Difference::kScans, 0, [&] {
      return where() + ": TDI differs in " + tdi.text() + ", which was " +
             (from.tdi->bit(tdi.first) ? "1" : "0");
    });
  } else {
    add(Difference::kScans, tdo, "expected TDO differs in ");
  }
  source_.passScan();
  converted_.passScan();
  return true;
}

std::string Comparison::report() const {
  const auto counted = [](std::uint64_t count, const char* what) {
    return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
  };
  std::string text = "source:    " + std::string(source_.reader.form()) + ", " +
                     counted(source_.scans, "scan") + ", " + counted(waits_.count(), "wait") +
                     "\n" + "converted: " + std::string(converted_.reader.form()) + ", " +
                     counted(converted_.scans, "scan") + "\n";
  for (const Side* side : {&source_, &converted_}) {
    const char* const name = side == &source_ ? "source" : "converted";
    for (const std::string& note : side->reader.notes()) {
      text += std::string("note: ") + name + ": " + note + "\n";
    }
  }
  if (waits_.usedRate()) {
    text += "times as clocks: at " + numberText(rate_.hertz()) + " Hz" +
            (rate_.isLearned()     ? ", as the waits show"
             : rate_.isSuggested() ? ", for want of a better one (-tck_freq)"
                                   : "") +
            "\n";
  }
  const auto isFound = [this](Difference difference) { return findings_[difference].count > 0; };
  if (!isFound(Difference::kScans)) text += "scans: all the same\n";
  if (!stopped_ && waits_.same() == waits_.count() && !isFound(Difference::kLongerWaits)) {
    text += "waits: all the same\n";
  }
  if (!isFound(Difference::kStateMoves) && !isFound(Difference::kEndStates) && !stopped_) {
    text += "states: all the same\n";
  }
  for (std::size_t i = 0; i < kDifferenceCount; ++i) {
    const auto difference = static_cast<Difference>(i);
    const Findings::Entry& entry = findings_[difference];
    if (entry.count == 0) continue;
    text.append(ruleOf(difference).name).append(": ").append(std::to_string(entry.count));
    text.append(" (").append(ruleOf(difference).meaning).append(")\n");
    text.append("  first: ").append(entry.first).append("\n");
    if (!entry.largest.empty()) text += "  largest: " + entry.largest + "\n";
  }
  return text;
}

}  // namespace tapforge_replay

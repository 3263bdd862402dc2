#include "tests/replay/tap_chain.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace tapforge::replay {
namespace {

using enum TapState;

struct StateRule {
  std::string_view name;
  TapState onZero;  // TMS 0
  TapState onOne;
};

// clang-format off
constexpr std::array<StateRule, 16> kStates = {{
    {"reset", kIdle, kReset},            {"idle", kIdle, kDrSelect},
    {"drselect", kDrCapture, kIrSelect}, {"drcapture", kDrShift, kDrExit1},
    {"drshift", kDrShift, kDrExit1},     {"drexit1", kDrPause, kDrUpdate},
    {"drpause", kDrPause, kDrExit2},     {"drexit2", kDrShift, kDrUpdate},
    {"drupdate", kIdle, kDrSelect},      {"irselect", kIrCapture, kReset},
    {"ircapture", kIrShift, kIrExit1},   {"irshift", kIrShift, kIrExit1},
    {"irexit1", kIrPause, kIrUpdate},    {"irpause", kIrPause, kIrExit2},
    {"irexit2", kIrShift, kIrUpdate},    {"irupdate", kIdle, kDrSelect},
}};
// clang-format on

// The states entered on the shortest way, one clock each. A state that can hold
// itself is one clock away from itself.
std::vector<TapState> route(TapState from, TapState to) {
  std::vector<std::vector<TapState>> ways = {{from}};
  for (std::size_t i = 0;; ++i) {  // breadth first; every state reaches every other
    for (bool tms : {false, true}) {
      std::vector<TapState> way = ways[i];
      way.push_back(nextState(way.back(), tms));
      if (way.back() == to) return {way.begin() + 1, way.end()};
      ways.push_back(std::move(way));
    }
  }
}

}  // namespace

std::string_view nameOf(TapState state) { return kStates[static_cast<std::size_t>(state)].name; }

std::optional<TapState> findState(std::string_view name) {
  for (std::size_t i = 0; i < kStates.size(); ++i) {
    if (kStates[i].name == name) return static_cast<TapState>(i);
  }
  return std::nullopt;
}

bool isStable(TapState state) {
  return state == kReset || state == kIdle || state == kDrPause || state == kIrPause;
}

TapState nextState(TapState from, bool tms) {
  const StateRule& rule = kStates[static_cast<std::size_t>(from)];
  return tms ? rule.onOne : rule.onZero;
}

Bits bitsFromHex(std::string_view hex, std::size_t length) {
  Bits bits;
  for (auto digit = hex.rbegin(); digit != hex.rend(); ++digit) {
    const int value = std::stoi(std::string(1, *digit), nullptr, 16);
    for (int bit = 0; bit < 4; ++bit) bits += (value >> bit & 1) != 0 ? '1' : '0';
  }
  if (bits.find('1', length) != Bits::npos) throw std::invalid_argument("bits above the length");
  bits.resize(length, '0');
  return bits;
}

Bits bitAnd(Bits left, const Bits& right) {
  for (std::size_t i = 0; i < left.size(); ++i) left[i] = std::min(left[i], right.at(i));
  return left;
}

bool matches(const Event& expected, const Event& actual) {
  for (std::size_t i = 0; i < expected.amounts.size(); ++i) {
    const Amount& wanted = expected.amounts[i];
    if (std::abs(wanted.value - actual.amounts[i].value) > wanted.slack) return false;
  }
  const auto withoutAmounts = [](Event event) { return event.amounts = {}, describe(event); };
  return withoutAmounts(expected) == withoutAmounts(actual);
}

std::string describe(const Event& event) {
  constexpr std::array kKinds = {"SIR",   "SDR",  "wait",      "step",   "ENDIR",
                                 "ENDDR", "TRST", "FREQUENCY", "nothing"};
  std::string text = std::string(kKinds[event.kind]) + ' ' + event.word;
  if (event.isScan()) text += "\n  tdi  " + event.tdi + "\n  care " + event.care;
  if (event.mask.find('1') != Bits::npos) {
    text += "\n  tdo  " + bitAnd(event.tdo, event.mask) + "\n  mask " + event.mask;
  }
  for (TapState state : event.states) text.append(" ").append(nameOf(state));
  for (std::size_t i = 0; i < event.amounts.size(); ++i) {
    constexpr std::array kUnits = {"clocks", "s at least", "s at most", "Hz"};
    const double value = event.amounts[i].value;
    if (value >= 0) text += ' ' + std::to_string(value) + ' ' + kUnits[i];
  }
  return text;
}

void TapChain::scan(Event scan) {
  state_ = scan.kind == Event::kSir ? endIr_ : endDr_;
  record(std::move(scan));
}

void TapChain::setEnd(Event::Kind endIrOrDr, TapState state) {
  (endIrOrDr == Event::kEndIr ? endIr_ : endDr_) = state;
  record({.kind = endIrOrDr, .states = {state}});
}

void TapChain::walk(const std::vector<TapState>& named) {
  for (std::size_t i = 0; i < named.size(); ++i) {
    const std::vector<TapState> way = route(state_, named[i]);
    if (way.size() > 1 && (i > 0 || !isStable(named[i]))) throw std::invalid_argument("no way");
    for (TapState step : way) record({.kind = Event::kStep, .states = {step}});
    state_ = named[i];
  }
  if (!isStable(state_)) throw std::invalid_argument("a path ends in a stable state");
}

void TapChain::wait(std::optional<TapState> run, std::optional<TapState> end,
                    const std::array<Amount, 4>& amounts) {
  run_ = run.value_or(run_);
  state_ = runEnd_ = end.value_or(runEnd_);
  record({.kind = Event::kWait, .states = {run_, runEnd_}, .amounts = amounts});
}

}  // namespace tapforge::replay

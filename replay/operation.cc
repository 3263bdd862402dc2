#include "replay/operation.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace tapforge_replay {

static constexpr std::size_t kMostNotes = 10;

std::string describe(const Place& place) {
  return place.line != 0 ? "line " + std::to_string(place.line)
                         : "byte " + std::to_string(place.offset);
}

std::string numberText(double value) {
  if (value >= 0 && value < 1e15 && value == std::floor(value)) {
    return std::to_string(static_cast<std::uint64_t>(value));
  }
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.begin(), text.end(), value).ptr;
  return {text.begin(), end};
}

std::string describe(const Wait& wait) {
  std::string text(nameOf(wait.state));
  if (wait.clocks >= 0) {
    text += ' ' + numberText(wait.clocks) + (wait.systemClock ? " SCK" : " TCK");
  }
  if (wait.seconds >= 0) text += ' ' + numberText(wait.seconds) + " SEC";
  if (wait.maximum >= 0) text += " MAXIMUM " + numberText(wait.maximum) + " SEC";
  return text;
}

std::string describe(const Operation& operation, std::size_t mostDigits) {
  using enum Operation::Kind;
  std::string text;
  const auto value = [&](const char* name, const Bits* bits) {
    if (bits != nullptr) text.append(name).append(hexOf(*bits, mostDigits));
  };
  const std::string which = operation.instruction ? "IR " : "DR ";
  switch (operation.kind) {
    case kScan:
      text = "scan " + std::to_string(operation.number) + ' ' + which +
             std::to_string(operation.tdi->size());
      value(" TDI ", operation.tdi);
      value(" SMASK ", operation.care);
      value(" TDO ", operation.tdo);
      value(" MASK ", operation.mask);
      break;
    case kWait:
      text = "wait " + describe(operation.wait);
      break;
    case kMove:
      text = "move";
      for (const TapState state : operation.before) text.append(" ").append(nameOf(state));
      return text;
    case kEndState:
      return "end state " + which + operation.word;
    case kResetLine:
      return "reset line " + operation.word;
    case kFrequency:
      return "frequency " + (operation.hertz < 0 ? "any" : numberText(operation.hertz) + " Hz");
    case kParallelIo:
      return "parallel I/O " + operation.word;
    case kEnd:
      return "end";
  }
  if (!operation.after.empty()) text.append(" -> ").append(nameOf(operation.after.back()));
  return text;
}

void Reader::note(const std::string& text) {
  if (notes_.size() < kMostNotes && std::find(notes_.begin(), notes_.end(), text) == notes_.end()) {
    notes_.push_back(text);
  }
}

}  // namespace tapforge_replay

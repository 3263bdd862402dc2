#include "replay/operation.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "replay/text_reader.h"

namespace tapforge_replay {
namespace {

constexpr std::size_t kMostNotes = 10;

}  // namespace

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
  const auto states = [&text](const std::vector<TapState>& list) {
    for (const TapState state : list) text.append(" ").append(nameOf(state));
  };
  const auto value = [&](const char* name, const Bits* bits) {
    if (bits != nullptr) text.append(name).append(hexOf(*bits, mostDigits));
  };
  const char* const which = operation.instruction ? "IR " : "DR ";
  switch (operation.kind) {
    case kScan:
      text = "scan " + std::to_string(operation.number) + ' ' + which +
             std::to_string(operation.tdi->size());
      value(" TDI ", operation.tdi);
      value(" SMASK ", operation.care);
      value(" TDO ", operation.tdo);
      value(" MASK ", operation.mask);
      if (!operation.after.empty()) text.append(" -> ").append(nameOf(operation.after.back()));
      return text;
    case kWait:
      text = "wait " + describe(operation.wait);
      if (!operation.after.empty()) text.append(" -> ").append(nameOf(operation.after.back()));
      return text;
    case kMove:
      text = "move";
      states(operation.before);
      return text;
    case kEndState:
      return std::string("end state ") + which + operation.word;
    case kResetLine:
      return "reset line " + operation.word;
    case kFrequency:
      return operation.hertz < 0 ? "frequency any"
                                 : "frequency " + numberText(operation.hertz) + " Hz";
    case kParallelIo:
      return "parallel I/O " + operation.word;
    case kEnd:
      break;
  }
  return "end";
}

void Reader::note(const std::string& text) {
  if (notes_.size() < kMostNotes && std::find(notes_.begin(), notes_.end(), text) == notes_.end()) {
    notes_.push_back(text);
  }
}

std::unique_ptr<Reader> makeReader(Input& input, bool dataWaits) {
  constexpr char kKsvfFirst = 7;  // every file begins with KREPEAT
  std::string_view ahead = input.window();
  if (ahead.starts_with(kKsvfFirst)) return makeKsvfReader(input, dataWaits);
  for (std::size_t at = 0; (at = ahead.find_first_not_of(" \t\r\n")) != ahead.npos;) {
    ahead.remove_prefix(at);
    const std::string_view word = ahead.substr(0, ahead.find_first_of(" \t\r\n"));
    // No word of SVF has a "_", but those of Tcl have one.
    if (word.starts_with('#') || word == "puts" || word.find('_') != word.npos) {
      return makeTclReader(input);
    }
    if (!word.starts_with('!') && !word.starts_with("//")) break;
    ahead.remove_prefix(std::min(ahead.find_first_of("\r\n"), ahead.size()));
  }
  return makeSvfReader(input);
}

}  // namespace tapforge_replay

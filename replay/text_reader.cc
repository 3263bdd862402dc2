#include "replay/text_reader.h"

#include <algorithm>
#include <cstdlib>

#include "replay/fault.h"
#include "replay/output.h"

namespace tapforge_replay {
namespace {

constexpr std::uint64_t kMostBits = std::uint64_t{1} << (sizeof(std::size_t) > 4 ? 40 : 31);
constexpr double kMostNumber = 0x1p53;  // below it each whole number is exact

constexpr std::uint8_t kNoDigit = 255;

constexpr std::array<std::uint8_t, 256> kDigits = [] {
  std::array<std::uint8_t, 256> table{};
  table.fill(kNoDigit);
  for (std::uint8_t value = 0; value < 10; ++value) table[std::size_t{'0'} + value] = value;
  for (std::uint8_t value = 10; value < 16; ++value) {
    table[std::size_t{'a'} + value - 10] = table[std::size_t{'A'} + value - 10] = value;
  }
  return table;
}();

}  // namespace

void Pattern::begin(std::size_t newLength) {
  if (newLength != length) {
    for (Value& value : values) value.given = false;
  }
  values[kTdo].given = false;
  length = newLength;
}

// A piece without a value: TDI is 1, all of it matters, and nothing is compared;
// with a TDO and without a MASK all of it is.
const Bits* ScanJoiner::joined(bool instruction, Pattern::Name name) {
  const auto& pieces = patterns_[instruction ? 1 : 0];
  const auto given = [name](const Pattern& piece) {
    if (piece.length == 0) return false;
    return name == Pattern::kMask ? piece[Pattern::kTdo].given : piece[name].given;
  };
  if (std::none_of(pieces.begin(), pieces.end(), given)) return nullptr;
  const Pattern& data = pieces[kData];
  const bool alone = pieces[kHeader].length == 0 && pieces[kTrailer].length == 0;
  if (alone && data[name].given) return &data[name].bits;  // spares the copy of a long scan

  const bool otherwise = name == Pattern::kTdi || name == Pattern::kSmask;
  Bits& storage = joined_[name];
  storage.clear();
  for (const Pattern& piece : pieces) {
    if (given(piece) && piece[name].given) {
      storage.append(piece[name].bits);
    } else {
      storage.append(piece.length, given(piece) || otherwise);
    }
  }
  return &storage;
}

void ScanJoiner::join(bool instruction, Operation& scan) {
  scan.instruction = instruction;
  scan.tdi = joined(instruction, Pattern::kTdi);
  scan.care = joined(instruction, Pattern::kSmask);
  scan.tdo = joined(instruction, Pattern::kTdo);
  scan.mask = joined(instruction, Pattern::kMask);
}

void TapFollower::go(TapState target, std::vector<TapState>& entered) {
  while (state_ != target) entered.push_back(state_ = stateTowards(state_, target));
}

void TapFollower::scan(Operation& scan) {
  scan.before.clear();
  scan.after.clear();
  const bool ir = scan.instruction;
  go(ir ? TapState::kIrCapture : TapState::kDrCapture, scan.before);
  go(ir ? TapState::kIrShift : TapState::kDrShift, scan.before);
  go(ir ? endIr_ : endDr_, scan.after);
}

void TapFollower::moveTo(TapState target, Operation& move) {
  const bool pause = target == TapState::kDrPause || target == TapState::kIrPause;
  if (state_ == target && !pause) {
    move.before.push_back(target);
  } else if (state_ == target) {
    go(target == TapState::kDrPause ? TapState::kDrCapture : TapState::kIrCapture, move.before);
  }
  go(target, move.before);
}

bool TapFollower::step(TapState target, Operation& move) {
  if (!isOneClock(state_, target)) return false;
  move.before.push_back(target);
  state_ = target;
  return true;
}

void TapFollower::wait(Operation& wait) {
  wait.before.clear();
  wait.after.clear();
  wait.wait.state = run_;
  go(run_, wait.before);
  go(runEnd_, wait.after);
}

void TextReader::fail(const std::string& text) const {
  throw Fault(input_.path() + ": line " + std::to_string(line_) + ": " + printable(text));
}

bool TextReader::readDigits() {
  std::uint64_t rest = rest_;  // in a register
  unsigned room = room_;
  std::size_t all = 0;
  while (true) {
    const std::string_view ahead = input_.window();
    const char* at = ahead.begin();
    for (; at != ahead.end(); ++at) {
      const std::uint8_t digit = kDigits[static_cast<unsigned char>(*at)];
      if (digit == kNoDigit) break;
      rest = rest << 4 | digit;
      if (--room != 0) continue;
      digits_.push_back(rest);
      room = kDigitsOfWord;
    }
    const auto found = static_cast<std::size_t>(at - ahead.begin());
    input_.skip(found);
    all += found;
    if (at != ahead.end() || ahead.empty()) break;
  }
  rest_ = rest;
  room_ = room;
  return all > 0;
}

void TextReader::finishValue(Pattern::Value& value, std::size_t length) {
  const unsigned count = kDigitsOfWord - room_;  // in the last word, if not all
  if (digits_.empty() && count == 0) fail("a value without digits");
  if (count > 0) digits_.push_back(rest_ & ((std::uint64_t{1} << count * 4) - 1));
  if (digits_.size() > (kMostBits >> 6)) fail("a value that is too long");
  if (!value.bits.assignDigits(digits_, count > 0 ? count : kDigitsOfWord, length)) {
    note("line " + std::to_string(line_) +
         ": a value has bits above its length, which are ignored");
  }
  value.given = true;
  digits_.clear();
  room_ = kDigitsOfWord;
}

// libc++ 14 has no from_chars for these, and strtod also takes blanks, words and hex digits.
double TextReader::parse(std::string_view text, const char* characters, double most,
                         const char* what) const {
  const std::string copy(text);
  char* end = nullptr;
  const double value = std::strtod(copy.c_str(), &end);
  const bool isNumber = !copy.empty() && copy[0] != '+' && end == copy.c_str() + copy.size();
  const bool isOnly = copy.find_first_not_of(characters) == std::string::npos;
  if (!isNumber || !isOnly || !(value >= 0 && value <= most)) {
    fail(what + (" expected, not \"" + copy + "\""));
  }
  return value;
}

double TextReader::number(std::string_view text) const {
  return parse(text, "0123456789.eE+-", kMostNumber, "a number");
}

std::size_t TextReader::length(std::string_view text) const {
  return static_cast<std::size_t>(
      parse(text, "0123456789", static_cast<double>(kMostBits), "a length in bits"));
}

TapState TextReader::state(std::string_view text) const {
  const auto found = findState(text);
  if (!found) fail("a TAP state expected, not \"" + std::string(text) + "\"");
  return *found;
}

TapState TextReader::requireStable(TapState state) const {
  if (!isStable(state)) fail("the TAP cannot stay in " + std::string(nameOf(state)));
  return state;
}

void TextReader::finishScan(bool instruction, Operation& scan) {
  scan.kind = Operation::Kind::kScan;
  scan.number = ++scans_;
  joiner_.join(instruction, scan);
  tap_.scan(scan);
}

void TextReader::finishEndState(bool instruction, TapState state, Operation& operation) {
  operation.kind = Operation::Kind::kEndState;
  operation.instruction = instruction;
  operation.word = nameOf(state);
  tap_.setEnd(instruction, state);
}

void TextReader::finishMove(const std::vector<TapState>& path, Operation& move) {
  move.kind = Operation::Kind::kMove;
  move.before.clear();
  move.after.clear();
  requireStable(path.back());
  for (const TapState& target : path) {
    const TapState from = tap_.state();
    if (path.size() > 1 && tap_.step(target, move)) continue;
    if (&target != &path.front() || !isStable(target)) {
      fail("no way of one TCK leads from " + std::string(nameOf(from)) + " to " +
           std::string(nameOf(target)));
    }
    tap_.moveTo(target, move);
  }
}

std::unique_ptr<Reader> makeReader(Input& input, bool dataWaits) {
  constexpr char kKsvfFirst = 7;  // every file begins with KREPEAT
  std::string_view ahead = input.window();
  if (ahead.starts_with(kKsvfFirst)) return makeKsvfReader(input, dataWaits);
  for (std::size_t at = 0; (at = ahead.find_first_not_of(" \t\r\n")) != ahead.npos;) {
    ahead.remove_prefix(at);
    const std::string_view word = ahead.substr(0, ahead.find_first_of(" \t\r\n"));
    const bool isComment = word.starts_with('!') || word.starts_with("//");
    // No word of SVF has a "_", but those of Tcl have one.
    const bool isTcl = word.starts_with('#') || word == "puts" || word.find('_') != word.npos;
    if (isTcl && !isComment) return makeTclReader(input);
    if (!isComment) break;
    ahead.remove_prefix(std::min(ahead.find_first_of("\r\n"), ahead.size()));
  }
  return makeSvfReader(input);
}

}  // namespace tapforge_replay

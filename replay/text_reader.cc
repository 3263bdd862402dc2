#include "replay/text_reader.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "replay/fault.h"
#include "replay/output.h"

namespace tapforge_replay {
namespace {

constexpr std::size_t kMostWord = 1 << 16;  // characters
constexpr unsigned kDigitsOfWord = 16;
constexpr std::size_t kMostBits = std::size_t{1} << (sizeof(std::size_t) > 4 ? 40 : 31);

constexpr std::uint8_t kNoDigit = 255;

constexpr std::array<std::uint8_t, 256> digitTable() {
  std::array<std::uint8_t, 256> table{};
  table.fill(kNoDigit);
  for (std::uint8_t value = 0; value < 10; ++value) table[std::size_t{'0'} + value] = value;
  for (std::uint8_t value = 10; value < 16; ++value) {
    table[std::size_t{'a'} + value - 10] = table[std::size_t{'A'} + value - 10] = value;
  }
  return table;
}
constexpr std::array<std::uint8_t, 256> kDigits = digitTable();

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
const Bits* ScanJoiner::joined(const std::array<Pattern, kPieceCount>& pieces, Pattern::Name name,
                               Bits& storage) {
  const auto given = [name](const Pattern& piece) {
    if (piece.length == 0) return false;
    return name == Pattern::kMask ? piece[Pattern::kTdo].given : piece[name].given;
  };
  if (std::none_of(pieces.begin(), pieces.end(), given)) return nullptr;
  const Pattern& data = pieces[kData];
  const bool alone = pieces[kHeader].length == 0 && pieces[kTrailer].length == 0;
  if (alone && data[name].given) return &data[name].bits;  // spares the copy of a long scan

  const bool otherwise = name == Pattern::kTdi || name == Pattern::kSmask;
  storage.clear();
  for (const Pattern& piece : pieces) {
    if (!given(piece)) {
      storage.append(piece.length, otherwise);
    } else if (piece[name].given) {
      storage.append(piece[name].bits);
    } else {
      storage.append(piece.length, true);
    }
  }
  return &storage;
}

void ScanJoiner::join(bool instruction, Operation& scan) {
  const auto& pieces = patterns_[instruction ? 1 : 0];
  scan.instruction = instruction;
  scan.tdi = joined(pieces, Pattern::kTdi, joined_[Pattern::kTdi]);
  scan.care = joined(pieces, Pattern::kSmask, joined_[Pattern::kSmask]);
  scan.tdo = joined(pieces, Pattern::kTdo, joined_[Pattern::kTdo]);
  scan.mask = joined(pieces, Pattern::kMask, joined_[Pattern::kMask]);
}

void TapFollower::go(TapState target, std::vector<TapState>& entered) {
  const auto way = wayBetween(state_, target);
  entered.insert(entered.end(), way.begin(), way.end());
  state_ = target;
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

void TextReader::countLine(int character) {
  if (character == '\n' || (character == '\r' && input_.peek() != '\n')) ++line_;
}

void TextReader::skipLine() {
  while (true) {
    const std::string_view ahead = input_.window();
    const std::size_t end = ahead.find_first_of("\r\n");
    input_.skip(std::min(end, ahead.size()));
    if (end != std::string_view::npos || ahead.empty()) return;
  }
}

TextReader::TextReader(Input& input, std::string_view commentStarts) : input_(input) {
  const auto set = [this](std::string_view characters, CharKind kind) {
    for (const char character : characters) kinds_[static_cast<unsigned char>(character)] = kind;
  };
  set(" \t\n\v\f\r", kBlank);
  set("();{}", kMark);
  set(commentStarts, kComment);
}

int TextReader::skipBlanks() {
  while (true) {
    const int character = input_.peek();
    if (character < 0) return character;
    const CharKind kind = kindOf(character);
    if (kind == kBlank) {
      input_.skip(1);
      countLine(character);
    } else if (kind == kComment) {
      skipComment();
    } else {
      return character;
    }
  }
}

std::string_view TextReader::word() {
  word_.clear();
  const int first = skipBlanks();
  if (first < 0) return {};
  if (kindOf(first) != kPlain) {
    input_.skip(1);
    return word_ = static_cast<char>(first);
  }
  while (true) {
    const std::string_view ahead = input_.window();
    std::size_t count = 0;
    while (count < ahead.size() && kindOf(ahead[count]) == kPlain) ++count;
    for (const char character : ahead.substr(0, count)) {
      const bool capital = character >= 'A' && character <= 'Z';
      word_ += static_cast<char>(capital ? character - 'A' + 'a' : character);
    }
    input_.skip(count);
    if (word_.size() > kMostWord) fail("a word of more than 64 Ki characters");
    if (count < ahead.size() || ahead.empty()) return word_;
  }
}

std::string_view TextReader::needWord() {
  const std::string_view next = word();
  if (next.empty()) fail("the file ends inside a statement");
  return next;
}

void TextReader::expect(std::string_view wanted) {
  const std::string_view next = needWord();
  if (next != wanted) {
    fail("\"" + std::string(wanted) + "\" expected, not \"" + std::string(next) + "\"");
  }
}

void TextReader::readValue(Pattern& pattern, std::size_t name, char closing) {
  digits_.clear();
  std::uint64_t digits = 0;
  unsigned count = 0;
  bool any = false;
  while (true) {
    const std::string_view ahead = input_.window();
    std::size_t i = 0;
    for (; i < ahead.size(); ++i) {
      const std::uint8_t digit = kDigits[static_cast<unsigned char>(ahead[i])];
      if (digit == kNoDigit) break;
      digits = digits << 4 | digit;
      if (++count == kDigitsOfWord) {
        digits_.push_back(digits);
        count = 0;
      }
    }
    any = any || i > 0;
    input_.skip(i);
    if (i == ahead.size() && !ahead.empty()) continue;
    if (closing == 0) break;
    const std::uint64_t before = input_.offset();
    const int character = skipBlanks();
    if (character == closing) {
      input_.skip(1);
      break;
    }
    if (character < 0) fail("the file ends inside a value");
    if (kDigits[static_cast<std::size_t>(character)] == kNoDigit && input_.offset() == before) {
      fail(std::string("\"") + static_cast<char>(character) + "\" in a value");
    }
  }
  if (!any) fail("a value without digits");
  if (count == 0) {
    count = kDigitsOfWord;
  } else {
    digits_.push_back(digits & ((std::uint64_t{1} << count * 4) - 1));
  }
  if (digits_.size() > (kMostBits >> 6)) fail("a value that is too long");
  pattern.values[name].given = true;
  if (!pattern.values[name].bits.assignDigits(digits_, count, pattern.length)) {
    note("line " + std::to_string(line_) +
         ": a value has bits above its length, which are ignored");
  }
}

double TextReader::number(std::string_view text) const {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value) ||
      value < 0) {
    fail("a number expected, not \"" + std::string(text) + "\"");
  }
  return value;
}

std::size_t TextReader::length(std::string_view text) const {
  std::size_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || value > kMostBits) {
    fail("a length in bits expected, not \"" + std::string(text) + "\"");
  }
  return value;
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

}  // namespace tapforge_replay

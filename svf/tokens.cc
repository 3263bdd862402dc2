#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <limits>

#include "io/text.h"
#include "svf/char_class.h"
#include "svf/file_channel.h"

namespace tapforge {
namespace {

// White space and punctuation end a number.
bool continuesNumber(unsigned char c) {
  return classOf(c) != CharClass::space && classOf(c) != CharClass::punctuation;
}

// By the number of characters, at most 8: the bits of a key that count.
constexpr std::array<std::uint64_t, 9> makeKeyMasks() {
  std::array<std::uint64_t, 9> masks{};
  for (std::size_t size = 0; size < masks.size(); ++size) {
    masks[size] = size < 8 ? ~(~std::uint64_t{0} << (8 * size)) : ~std::uint64_t{0};
  }
  return masks;
}
constexpr std::array<std::uint64_t, 9> kKeyMasks = makeKeyMasks();

// Word::keyOf() of `size` characters in lower case.
// Setting bit 5 also changes "_", but no keyword has one.
std::uint64_t keyOf(const unsigned char* start, std::size_t size) {
  std::uint64_t key = 0;
  std::memcpy(&key, start, sizeof key);
  if constexpr (std::endian::native == std::endian::big) key = __builtin_bswap64(key);
  return (key | 0x2020202020202020) & kKeyMasks[std::min<std::size_t>(size, 8)];
}

std::int64_t decimalValue(std::string_view digits) {
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return error == std::errc::result_out_of_range ? std::numeric_limits<std::int64_t>::max() : value;
}

}  // namespace

bool FileChannel::getToken() {
  const unsigned char* p = cur_;
  CharClass c = classOf(*p);
  // The byte at end_ is 0, which is neither white space nor part of a word.
  while (c == CharClass::space) c = classOf(*++p);
  if (c == CharClass::wordStart) return takeWord(p);
  if (c == CharClass::digit) return getNum(p);
  if (c == CharClass::punctuation && *p != '!' && *p != '/') {
    return takeCharacter(p, TokenType::punctuation);
  }
  return getOther(p);
}

inline bool FileChannel::takeWord(const unsigned char* start) {
  const unsigned char* p = start;
  do {
    ++p;
  } while (isWordChar(*p));
  const auto size = static_cast<std::size_t>(p - start);
  if (p == end_ || size >= kWordLimit) return takeLong(start, TokenType::word);
  sToken_ = start;
  tokenSize_ = size;
  key_ = keyOf(start, size);
  iTokenType_ = TokenType::word;
  cur_ = p;
  return true;
}

inline bool FileChannel::getNum(const unsigned char* start) {
  constexpr std::ptrdiff_t kNeverTooMany = 18;  // digits that 64 bits hold
  std::uint64_t value = 0;
  const unsigned char* p = start;
  do {
    value = 10 * value + (*p - std::uint64_t{'0'});
  } while (isDigit(*++p));
  if (p - start > kNeverTooMany || continuesNumber(*p)) return takeLong(start, TokenType::number);
  sToken_ = start;
  tokenSize_ = static_cast<std::size_t>(p - start);
  key_ = 0;
  number_ = static_cast<std::int64_t>(value);
  iTokenType_ = TokenType::number;
  cur_ = p;
  return true;
}

inline bool FileChannel::takeCharacter(const unsigned char* start, TokenType type) {
  sToken_ = start;
  tokenSize_ = 1;
  key_ = *start;
  iTokenType_ = type;
  cur_ = start + 1;
  return true;
}

// What is rare: comments, slashes, odd characters and the end of the block.
bool FileChannel::getOther(const unsigned char* p) {
  for (;;) {
    while (isSpace(*p)) ++p;
    cur_ = p;
    if (p == end_) {
      if (!fill()) return endQuietly();
      p = cur_;
      continue;
    }
    iTokenCol_ = nullptr;
    switch (classOf(*p)) {
      case CharClass::wordStart:
        return takeWord(p);
      case CharClass::digit:
        return getNum(p);
      case CharClass::punctuation:
        if (*p == '/') {
          if (takeSlash(p)) return true;
        } else if (*p == '!') {
          skipComment(p);
        } else {
          return takeCharacter(p, TokenType::punctuation);
        }
        break;
      default:
        return takeCharacter(p, TokenType::other);
    }
    if (atEnd_) return false;
    p = cur_;
  }
}

// A word or number of any length, anywhere in the block.
bool FileChannel::takeLong(const unsigned char* start, TokenType type) {
  const bool digitLed = isDigit(*start);
  const std::size_t limit = digitLed ? kNumberLimit : kWordLimit;
  cur_ = start;
  std::size_t size = 0;
  for (;; ++size) {
    if (cur_ + size == end_ && !fill()) break;
    const unsigned char c = cur_[size];
    if (!(digitLed ? continuesNumber(c) : isWordChar(c))) break;
    if (classOf(c) == CharClass::wordStart) type = TokenType::word;
    if (size + 1 == limit) tooLong(digitLed);
  }
  sToken_ = cur_;
  tokenSize_ = size;
  key_ = type == TokenType::word ? keyOf(cur_, size) : 0;
  if (type == TokenType::number) number_ = decimalValue(tokenAsWritten());
  iTokenType_ = type;
  cur_ += size;
  return true;
}

// The "/" at `start`: a comment with another "/" after it, else a token or, where
// slashes are lost, the character after it. False when there is no token.
bool FileChannel::takeSlash(const unsigned char* start) {
  if (start + 1 == end_) {
    fill();
    start = cur_;
  }
  const bool another = start + 1 != end_ && start[1] == '/';
  if (rules_.exact && !another) report_.fatal("-exact: a \"/\" that begins no comment");
  if (!rules_.slashIsToken) {
    if (another) {
      skipComment(start);
      return false;
    }
    if (start + 1 == end_) {
      takeBlankItem(start);
      cur_ = end_;
      atEnd_ = true;
      return false;
    }
    takeCharacter(start + 1, TokenType::punctuation);
    key_ = static_cast<unsigned char>(toLower(static_cast<char>(start[1])));
    return true;
  }
  // A comment is read from the segment of the line that holds its second "/". When
  // the line is cut before that one, the comment begins at -1 of the segment: fatal.
  const bool segmentEnds = endsSegment(start + 1);
  if (another && segmentEnds && !rules_.exact) {
    const auto length = static_cast<std::int64_t>(getSrcLine(offsetOf(start + 1)).size());
    report_.fatal(concat("[skCm] range[0 <= -1 <= ", length, "]"), Where::nowhere);
  }
  if (another) {
    skipComment(start);
    return false;
  }
  return takeCharacter(start, segmentEnds ? TokenType::cutSlash : TokenType::punctuation);
}

// White space before `position` that is the last item read.
void FileChannel::takeBlankItem(const unsigned char* position) {
  const bool afterComment = tokenSize_ == 0 && sToken_ == position;
  if (!rules_.blankIsItem || position == keptBegin_ || !isSpace(position[-1]) || afterComment) {
    return;
  }
  sToken_ = position - 1;
  tokenSize_ = 1;
}

bool FileChannel::endQuietly() {
  takeBlankItem(end_);
  // Where lines are shown, each blank has a column of its own; one that ended the last
  // token has been read with it, but for one behind a number.
  const bool behindNumber = isDigit(*sToken_) && (end_[-1] == ' ' || end_[-1] == '\t');
  const bool endsToken = lookedAhead() && sToken_ + tokenSize_ + 1 == end_ && !behindNumber;
  if (rules_.linesAreCut && end_ != keptBegin_ && isSpace(end_[-1]) && !endsToken) {
    iTokenCol_ = end_ - 1;
  }
  atEnd_ = true;
  return false;
}

std::string FileChannel::tokenLower() const {
  std::string text(tokenAsWritten());
  std::transform(text.begin(), text.end(), text.begin(), [](char c) { return toLower(c); });
  return text;
}

bool FileChannel::isLong(std::string_view word) const {
  return tokenSize_ == word.size() && tokenLower() == word;
}

// The token that begins at cur_ has reached its limit. The item shown is the one
// before it.
void FileChannel::tooLong(bool isNumber) {
  takeBlankItem(cur_);
  iTokenCol_ = cur_;
  cur_ += isNumber ? kNumberLimit : kWordLimit;
  if (isNumber)
    report_.fatal(concat(rules_.numberTooLong[0], kNumberLimit, rules_.numberTooLong[1]));
  report_.fatal(concat("token exceeds ", kWordLimit, " characters"));
}

void FileChannel::tokenMissing(std::string_view word) {
  report_.fatal(concat(rules_.tokenMissing[0], word, rules_.tokenMissing[1]));
}

void FileChannel::endOfFile() {
  report_.fatal(rules_.endOfFile, rules_.endOfFileHasPosition ? Where::input : Where::nowhere);
}

}  // namespace tapforge

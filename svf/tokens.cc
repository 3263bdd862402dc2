#include "svf/tokens.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "shell/io/text.h"
#include "svf/char_class.h"
#include "svf/word_scan.h"

namespace tapforge {
namespace {

// White space and punctuation end a number; "_" does not.
bool continuesNumber(unsigned char c) { return !isSpace(c) && (!isPunct(c) || c == '_'); }

}  // namespace

// The common cases: a short word or a punctuation character, all in the window.
bool Lexer::advance() {
  if (iUnlex_) {
    iUnlex_ = false;
    return true;
  }
  const unsigned char* p = source_.begin();
  const unsigned char* const end = source_.end();
  unsigned char c = 0;
  for (;; ++p) {
    if (p == end) return advanceFar();
    c = *p;
    if (!isSpace(c)) break;
  }
  if (isWordChar(c)) return takeShortWord(p, end) || advanceFar();
  if (!isPunct(c) || c == '!' || c == '/') return advanceFar();
  source_.markToken(p);
  source_.advanceTo(p + 1);
  source_.setLastItem(c);
  type_ = TokenType::punctuation;
  sTokenLower_[0] = static_cast<char>(c);
  size_ = 1;
  return true;
}

// Any case, through comments and windows, from where advance() began.
bool Lexer::advanceFar() {
  for (;;) {
    const unsigned char* p = source_.begin();
    const unsigned char* const end = source_.end();
    while (p != end && isSpace(*p)) ++p;
    if (blankIsItem_ && p != source_.begin()) source_.setLastItem(p[-1]);
    if (p == end) {
      // Each blank is an item with a column of its own; the last line shows it.
      if (p != source_.begin()) source_.markToken(p - 1);
      source_.advanceTo(p);
      if (source_.atEnd()) return false;
      source_.nextWindow();
      if (source_.atEnd()) return false;
      continue;
    }
    source_.markToken(p);
    source_.advanceTo(p);
    if (isWordChar(*p)) {
      if (!takeShortWord(p, end)) getLongWord(isDigit(*p));
      return true;
    }
    if (getCharacter(*p)) return true;
    if (source_.atEnd()) return false;
  }
}

// The character at the start of the window is a token by itself. False when it
// began a comment, or when the file ended before there was a token.
bool Lexer::getCharacter(unsigned char c) {
  source_.advanceTo(source_.begin() + 1);
  type_ = isPunct(c) ? TokenType::punctuation : TokenType::other;
  if (c == '!' || c == '/') {
    int found = -1;
    if (c == '!') {
      source_.skipComment();
    } else {
      found = source_.slash();
    }
    if (found == -1) {
      if (blankIsItem_) source_.setLastItem("");
      return false;
    }
    if (source_.atEnd()) return false;
    c = static_cast<unsigned char>(found);
  }
  source_.setLastItem(c);
  sTokenLower_[0] = toLower(static_cast<char>(c));
  size_ = 1;
  return true;
}

// A word or a number begins at `start`. Takes it when it is short and the
// window holds it together with the character behind it; else false, and
// nothing has been read.
inline bool Lexer::takeShortWord(const unsigned char* start, const unsigned char* end) {
  // Text read 16 characters at a time, wherever the window ends.
  const WordRun run = scanWord(start, sTokenLower_);
  const unsigned char* const behind = start + run.size;
  if (run.size >= SourceReader::kShortItem || behind >= end) return false;
  // A number goes on with odd characters; the run has ended before a "_".
  if (run.digits != 0 && !isSpace(*behind) && !isPunct(*behind)) return false;
  type_ = run.digits == run.size ? TokenType::number : TokenType::word;
  size_ = run.size;
  source_.markToken(start);
  source_.setShortItem(start, size_);
  if (blankEndsWord_ && isSpace(*behind)) {
    source_.advanceTo(behind + 1);
  } else {
    source_.peekAt(behind);
  }
  return true;
}

// The same for a token at the start of the window that is long, goes on behind
// it or holds odd characters: one at a time. The text is complete before it becomes the last
// item, which an error must still show.
void Lexer::getLongWord(bool digitLed) {
  const std::size_t limit = digitLed ? kNumberLimit : kWordLimit;
  type_ = digitLed ? TokenType::number : TokenType::word;
  char written[kWordLimit];
  std::size_t count = 0;
  auto c = static_cast<unsigned char>(source_.next());
  do {
    if (isWordStart(c)) type_ = TokenType::word;
    written[count++] = static_cast<char>(c);
    if (count == limit) tooLong(digitLed);
    c = static_cast<unsigned char>(source_.next());
  } while (!source_.atEnd() && (digitLed ? continuesNumber(c) : isWordChar(c)));
  if (!source_.atEnd() && !(blankEndsWord_ && isSpace(c))) source_.unread();
  source_.setLastItem({written, count});
  std::transform(written, written + count, sTokenLower_, [](char each) { return toLower(each); });
  size_ = count;
}

void Lexer::tooLong(bool digitLed) {
  if (digitLed) report_.fatal(source_.syntax().numberTooLong);
  report_.fatal(concat("token exceeds ", kWordLimit, " characters"));
}

void Lexer::tokenMissing(std::string_view keyword) {
  const auto& around = source_.syntax().tokenMissing;
  report_.fatal(concat(around[0], keyword, around[1]));
}

long decimalValue(std::string_view digits) {
  constexpr std::size_t kNeverTooMany = 18;
  long value = 0;
  if (digits.size() <= kNeverTooMany) {
    for (const char c : digits) {
      if (!isDigit(static_cast<unsigned char>(c))) break;
      value = 10 * value + (c - '0');
    }
    return value;
  }
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return error == std::errc::result_out_of_range ? std::numeric_limits<long>::max() : value;
}

bool testIsNum(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size() && isDigit(static_cast<unsigned char>(text[i]))) ++i;
  if (i == 0) return false;
  if (i < text.size() && toLower(text[i]) == 'e') {
    do {
      ++i;
    } while (i < text.size() && isDigit(static_cast<unsigned char>(text[i])));
  }
  return i == text.size();
}

long lGetLong(Sign sign, Lexer& lexer) {
  const bool negative = lexer.lexIs("-");
  if (negative) {
    if (sign == Sign::nonNegative) lexer.report().fatal("Expected positive number");
    lexer.lex();
  }
  if (lexer.type() != TokenType::number) lexer.report().fatal("Number expected");
  const long value = decimalValue(lexer.token());
  return negative ? -value : value;
}

}  // namespace tapforge

#include "svf/tokens.h"

#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>

#include "shell/text.h"
#include "svf/char_class.h"

namespace tapforge {
namespace {

constexpr std::size_t kShort = 16;

// Eight characters at a time: a byte that is an ASCII capital gets bit 5.
std::uint64_t lowerEight(std::uint64_t text) {
  constexpr std::uint64_t kOnes = 0x0101010101010101U;
  const std::uint64_t low = text & (0x7f * kOnes);
  const std::uint64_t fromA = low + (0x80 - 'A') * kOnes;
  const std::uint64_t pastZ = low + (0x7f - 'Z') * kOnes;
  const std::uint64_t capital = ~text & (fromA ^ pastZ) & (0x80 * kOnes);
  return text | (capital >> 2);
}

// White space and punctuation end a number; "_" does not.
bool continuesNumber(unsigned char c) { return !isSpace(c) && (!isPunct(c) || c == '_'); }

}  // namespace

bool Lexer::advance() {
  if (iUnlex_) {
    iUnlex_ = false;
    return true;
  }
  for (;;) {
    const unsigned char* p = source_.begin();
    const unsigned char* const end = source_.end();
    while (p != end && isSpace(*p)) ++p;
    if (dialect_.blankIsItem && p != source_.begin()) source_.setLastItem(p[-1]);
    source_.advanceTo(p);
    if (p == end) {
      if (source_.atEnd()) return false;
      source_.nextWindow();
      if (source_.atEnd()) return false;
      continue;
    }
    source_.markToken(p);
    if (isWordStart(*p)) {
      type_ = TokenType::word;
      getRun(kWordLimit, isWordChar);
      return true;
    }
    if (isDigit(*p)) {
      getNum();
      return true;
    }
    if (getPunctuation(*p)) return true;
    if (source_.atEnd()) return false;
  }
}

// A character that is a token by itself, the first one of the window. False
// when it began a comment, or when the file ended before there was a token.
bool Lexer::getPunctuation(unsigned char c) {
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
      if (dialect_.blankIsItem) source_.setLastItem("");
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

void Lexer::getNum() {
  getRun(kNumberLimit, continuesNumber);
  type_ = TokenType::number;
  for (const char c : token()) {
    if (isWordStart(static_cast<unsigned char>(c))) type_ = TokenType::word;
  }
}

// A run of characters that belong together, the first one at the start of the
// window.
template <typename Continues>
void Lexer::getRun(std::size_t limit, Continues continues) {
  const unsigned char* const start = source_.begin();
  const unsigned char* const end = source_.end();
  const unsigned char* p = start + 1;
  while (p != end && continues(*p)) ++p;
  const auto size = static_cast<std::size_t>(p - start);
  if (p != end && size <= kShort) {
    // The common case: all in the window, with the character behind it.
    if (dialect_.blankEndsWord && isSpace(*p)) {
      source_.advanceTo(p + 1);
    } else {
      source_.peekAt(p);
    }
    takeShort(start, size);
    return;
  }
  // Long, or going on behind the window: one character at a time. The text is
  // complete before it becomes the last item, which an error must still show.
  char written[kWordLimit];
  std::size_t count = 0;
  int c = source_.next();
  do {
    written[count++] = static_cast<char>(c);
    if (count == limit) tooLong(limit);
    c = source_.next();
  } while (!source_.atEnd() && continues(static_cast<unsigned char>(c)));
  const bool consumed = dialect_.blankEndsWord && isSpace(static_cast<unsigned char>(c));
  if (!consumed && !source_.atEnd()) source_.unread();
  source_.setLastItem({written, count});
  for (std::size_t i = 0; i < count; ++i) sTokenLower_[i] = toLower(written[i]);
  size_ = count;
}

// Takes up to kShort characters in fixed steps, whatever stands behind them.
void Lexer::takeShort(const unsigned char* start, std::size_t size) {
  source_.setShortItem(start, size);
  std::uint64_t text = 0;
  std::memcpy(&text, start, sizeof text);
  text = lowerEight(text);
  std::memcpy(sTokenLower_, &text, sizeof text);
  if (size > sizeof text) {
    std::memcpy(&text, start + sizeof text, sizeof text);
    text = lowerEight(text);
    std::memcpy(sTokenLower_ + sizeof text, &text, sizeof text);
  }
  size_ = size;
}

void Lexer::tooLong(std::size_t limit) {
  if (limit == kWordLimit) report_.fatal(cat("token exceeds ", kWordLimit, " characters"));
  report_.fatal(dialect_.numberTooLong);
}

void Lexer::tokenMissing(std::string_view keyword) {
  report_.fatal(cat(dialect_.tokenMissing[0], keyword, dialect_.tokenMissing[1]));
}

long decimalValue(std::string_view digits) {
  long value = 0;
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

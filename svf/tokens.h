#ifndef TAPFORGE_SVF_TOKENS_H
#define TAPFORGE_SVF_TOKENS_H

#include <cstddef>
#include <cstring>
#include <string_view>

#include "shell/reporter.h"
#include "svf/source_reader.h"

namespace tapforge {

enum class TokenType { word, number, punctuation, other };

/// Cuts the source into words (letters, digits, "_"), numbers (digits only),
/// single punctuation characters and single other characters. White space and
/// comments separate them and are never seen by a parser.
///
/// Views of token text are good until the next token is read.
class Lexer {
 public:
  Lexer(SourceReader& source, Reporter& report)
      : source_(source),
        report_(report),
        blankEndsWord_(report.dialect().blankEndsWord),
        blankIsItem_(report.dialect().blankIsItem) {}

  /// The first token of a statement; false when only white space and comments
  /// were left before the end of the file.
  bool lexKeyword() { return advance(); }

  /// Reads the next token inside a statement. The end of the file there is
  /// fatal.
  void lex() {
    if (!advance()) source_.endOfFile();
  }

  /// As lex(); whether the token is this one (in lower case).
  template <std::size_t N>
  bool lexIs(const char (&text)[N]) {
    lex();
    return is(text);
  }

  /// Gives the current token back: the next read returns it again.
  void unlex() { iUnlex_ = true; }

  /// The current token, in lower case and as written.
  std::string_view token() const { return {sTokenLower_, size_}; }
  std::string_view tokenAsWritten() const { return source_.lastItem(); }
  // A literal's length is a constant, so this comes down to comparing numbers.
  template <std::size_t N>
  bool is(const char (&text)[N]) const {
    return size_ == N - 1 && std::memcmp(sTokenLower_, text, N - 1) == 0;
  }
  TokenType type() const { return type_; }

  /// The next token must be `keyword`, else fatal "Expecting [keyword]" (mode 1:
  /// "Token [keyword] not found").
  template <std::size_t N>
  void strSearch(const char (&keyword)[N]) {
    if (!lexIs(keyword)) tokenMissing(keyword);
  }

  /// Reads tokens away up to and including `keyword`.
  template <std::size_t N>
  void skipUntil(const char (&keyword)[N]) {
    while (!lexIs(keyword)) {
    }
  }

  SourceReader& source() { return source_; }
  Reporter& report() { return report_; }

  // The limits count characters; reaching one is fatal.
  static constexpr std::size_t kWordLimit = 98;
  static constexpr std::size_t kNumberLimit = 30;

 private:
  bool advance();
  bool advanceFar();
  bool getCharacter(unsigned char c);
  bool takeShortWord(const unsigned char* start, const unsigned char* end);
  void getLongWord(bool digitLed);
  [[noreturn]] void tooLong(bool digitLed);
  [[noreturn]] void tokenMissing(std::string_view keyword);

  SourceReader& source_;
  Reporter& report_;
  const bool blankEndsWord_;
  const bool blankIsItem_;
  TokenType type_ = TokenType::other;
  bool iUnlex_ = false;
  std::size_t size_ = 0;
  char sTokenLower_[SourceReader::kMaxToken] = {};
};

/// A whole decimal number, as "number" tokens hold it: digits up to the first
/// other character. Saturates beyond 64 bits.
long decimalValue(std::string_view digits);

/// 1 to many digits, optionally "e" and digits (an "e" at the very end passes).
bool testIsNum(std::string_view text);

enum class Sign { any, nonNegative };

/// Reads an integer, with "-" in front if `sign` allows; else fatal "Number
/// expected" or "Expected positive number".
long lGetLong(Sign sign, Lexer& lexer);

}  // namespace tapforge

#endif  // TAPFORGE_SVF_TOKENS_H

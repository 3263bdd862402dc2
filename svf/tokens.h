#ifndef TAPFORGE_SVF_TOKENS_H
#define TAPFORGE_SVF_TOKENS_H

#include <cstddef>
#include <string_view>

#include "shell/reporter.h"
#include "svf/source_reader.h"

namespace tapforge {

enum class TokenType { word, number, punctuation, space, other };

/// Cuts the source into words (letters, digits, "_"), numbers (digits only),
/// single punctuation characters and single other characters. White space and
/// comments separate them and are never seen by a parser.
///
/// Views of token text are good until the next token is read.
class Lexer {
 public:
  Lexer(SourceReader& source, Reporter& report)
      : source_(source), report_(report), dialect_(report.dialect()) {}

  /// The first token of a statement; false when only white space and comments
  /// were left before the end of the file.
  bool lexKeyword() { return advance(); }

  /// The next token inside a statement, in lower case. The end of the file
  /// there is fatal.
  std::string_view lex() {
    if (!advance()) source_.endOfFile();
    return token();
  }

  /// Gives the current token back: the next read returns it again.
  void unlex() { iUnlex_ = true; }

  std::string_view token() const { return {sTokenLower_, size_}; }
  std::string_view tokenAsWritten() const { return source_.lastItem(); }
  bool is(std::string_view text) const { return token() == text; }
  TokenType type() const { return type_; }

  /// The next token must be `keyword`, else fatal "Expecting [keyword]" (mode 1:
  /// "Token [keyword] not found").
  void strSearch(std::string_view keyword);

  /// Reads tokens away up to and including `keyword`.
  void skipUntil(std::string_view keyword);

  SourceReader& source() { return source_; }
  Reporter& report() { return report_; }

  // The limits count characters; reaching one is fatal.
  static constexpr std::size_t kWordLimit = 98;
  static constexpr std::size_t kNumberLimit = 30;

 private:
  bool advance();
  bool getToken(unsigned char c);
  template <typename Continues>
  void getRun(std::size_t limit, Continues continues);
  [[noreturn]] void tooLong(std::size_t limit);

  SourceReader& source_;
  Reporter& report_;
  const Dialect& dialect_;
  TokenType type_ = TokenType::space;
  bool iUnlex_ = false;
  std::size_t size_ = 0;
  // Short tokens are copied in steps of 16 characters.
  char sTokenLower_[SourceReader::kMaxToken + 16] = {};
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

#ifndef TAPFORGE_SVF_FILE_CHANNEL_H
#define TAPFORGE_SVF_FILE_CHANNEL_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <string_view>

#include "io/files.h"
#include "io/reporter.h"
#include "svf/syntax_rules.h"
#include "svf/word.h"

namespace tapforge {

/// `cutSlash` is the punctuation "/" as the last character of a segment of a line. The
/// types up to it, and only these, are read with the character after the token.
enum class TokenType : std::uint8_t { word, number, cutSlash, punctuation, other };

/// Told of the comments of the source where they are met, also in the middle of
/// a statement.
class CommentSink {
 public:
  virtual ~CommentSink() = default;
  /// A piece of a comment, from its "!" or "//" up to the end of its line. A
  /// long comment comes in several pieces. Good for the call only.
  virtual void commentText(std::string_view piece) = 0;
  /// The comment and its line end have been read.
  virtual void commentEnd() = 0;
};

/// The input: an SVF file, read once from front to back, a block at a time, and
/// cut into tokens: words (letters, digits, "_"), numbers (digits only), single
/// punctuation characters and single other characters. White space and comments
/// separate tokens and are never seen by a parser.
///
/// A token is a view of the block. Everything else that messages and source
/// comments show (line number, column, last item, text read) is worked out from
/// the pointers when somebody asks, or when the block is filled anew. While the
/// channel exists, messages tell their place by it.
///
/// The end of the file is met once quietly; reading on is fatal.
class FileChannel final : public InputPosition {
 public:
  /// Takes over the input's handle. `rules`, `report` and `comments` (may be
  /// null) are borrowed.
  FileChannel(InputFile& input, const SyntaxRules& rules, Reporter& report, CommentSink* comments);
  ~FileChannel() override { report_.setInput(nullptr); }
  FileChannel(const FileChannel&) = delete;
  FileChannel& operator=(const FileChannel&) = delete;

  const SyntaxRules& rules() const { return rules_; }
  Reporter& report() { return report_; }

  // Tokens (tokens.cc).

  /// The first token of a statement; false when only white space and comments
  /// were left before the end of the file.
  bool lexKeyword() {
    if (iUnlex_) {
      iUnlex_ = false;
      return true;
    }
    return getToken();
  }

  /// Reads the next token inside a statement. The end of the file is fatal.
  void lex() {
    if (!lexKeyword()) endOfFile();
  }

  /// As lex(); whether the token is this word.
  bool lexIs(const Word& word) {
    lex();
    return is(word);
  }

  /// Gives the current token back: the next read returns it again.
  void unlex() { iUnlex_ = true; }

  /// Compares the current token in lower case.
  bool is(const Word& word) const {
    // No character of a word is 0, so a key of fewer than eight tells their number too.
    return key_ == word.key && (word.text.size() < sizeof key_ || isLong(word.text));
  }

  TokenType type() const { return iTokenType_; }
  /// The value of a number token; saturates beyond 64 bits.
  std::int64_t number() const { return number_; }
  /// Word::keyOf() of the token in lower case; 0 for numbers.
  std::uint64_t key() const { return key_; }
  /// The current token; good until the next one is read.
  std::string_view tokenAsWritten() const {
    return {reinterpret_cast<const char*>(sToken_), tokenSize_};
  }
  std::string tokenLower() const;
  /// Where the token that has just been read begins and ends, in bytes of the file.
  std::int64_t tokenBegin() const { return offsetOf(sToken_); }
  std::int64_t tokenEnd() const { return tokenBegin() + static_cast<std::int64_t>(tokenSize_); }
  /// The storage of the number read last under -exact.
  std::string& numberText() { return sNumberText_; }

  /// The next token must be this word, else fatal "Expecting [word]" (mode 1:
  /// "Token [word] not found").
  void strSearch(const Word& word) {
    if (!lexIs(word)) tokenMissing(word.text);
  }
  /// Reads tokens away up to and including this word.
  void skipUntil(const Word& word) {
    while (!lexIs(word)) {
    }
  }

  // Single characters, for text in parentheses (file_channel.cc).

  /// The next character. Each one is an item of its own in messages, but for the
  /// ")" that ends the text. The end of the file gives a blank once and makes
  /// atEnd() true; reading on is fatal.
  int getFChanChar();

  /// The text in memory from the next character on; the kPadding bytes after it are
  /// 0 and can be read too.
  std::span<const unsigned char> ahead() const { return {cur_, end_}; }
  /// Takes all characters before `position`, of which `item` is the last to be
  /// shown in messages. Afterwards is() and key() must not be asked before the next
  /// token is read: the key is still that of the last one.
  void advancePast(const unsigned char* item, const unsigned char* position) {
    sToken_ = item;
    tokenSize_ = 1;
    iTokenType_ = TokenType::other;
    cur_ = position;
  }

  /// A read has met the end of the file.
  bool atEnd() const { return atEnd_; }

  // Places (source_place.cc).

  /// The number of the line that was read last; the first one is 1.
  std::int64_t lineNumber();
  /// Under -exact messages tell the line of the statement that the current token begins,
  /// until it ends.
  void beginStatement() {
    if (rules_.exact) noteStatement();
  }
  void endStatement() { statementLine_ = 0; }
  std::int64_t statementLine() const { return statementLine_; }
  std::string positionText() override;
  std::string statementText() override;

  /// What follows a statement on its source line.
  struct LineRest {
    bool lineEnds;       // nothing but white space
    std::size_t blanks;  // else the white space before the next character
  };
  LineRest lineRest() {
    if (cur_ != end_ && (*cur_ == '\n' || *cur_ == '\r')) return {true, 0};
    return longLineRest();
  }

  /// Turns the source echo on: what is read from then on is kept for a comment
  /// in the output, at most kMaxEcho characters, and none from lines after
  /// `maxLines` when that is 1 or more.
  void keepSrcEcho(std::int64_t maxLines);
  /// The text read since the last resetSrcLineBuf(), as far as it is kept.
  std::string_view srcEcho();
  void resetSrcLineBuf() {
    if (echoOn_) clearSrcEcho();
  }

  // A word or number that reaches its limit (in characters) is fatal; so a token
  // has one character less.
  static constexpr std::size_t kWordLimit = 98;
  static constexpr std::size_t kNumberLimit = 30;
  static constexpr std::size_t kMaxEcho = 69;    // characters
  static constexpr std::int64_t kMaxLine = 199;  // characters of a cut line
  static constexpr std::size_t kPadding = 64;    // bytes

 private:
  // tokens.cc
  bool getToken();
  bool takeWord(const unsigned char* start);
  bool getNum(const unsigned char* start);
  bool getOther(const unsigned char* p);
  bool takeLong(const unsigned char* start, TokenType type);
  bool takeCharacter(const unsigned char* start, TokenType type);
  bool takeSlash(const unsigned char* start);
  void takeBlankItem(const unsigned char* position);
  bool endQuietly();
  [[noreturn]] void tooLong(bool isNumber);
  [[noreturn]] void tokenMissing(std::string_view word);
  [[noreturn]] void endOfFile();
  bool isLong(std::string_view word) const;

  // file_channel.cc
  bool fill();
  void skipComment(const unsigned char* start);

  // source_place.cc
  void noteStatement();
  // Whether the character after the token has been read with it; see TokenType.
  bool lookedAhead() const { return iTokenType_ <= TokenType::cutSlash; }
  // A byte of the block by its offset in the file, and back.
  std::int64_t offsetOf(const unsigned char* p) const { return blockOffset_ + (p - text_); }
  const unsigned char* at(std::int64_t offset) const { return text_ + (offset - blockOffset_); }
  bool inBlock(const unsigned char* p) const;
  std::int64_t readTo() const;
  void countLinesTo(std::int64_t offset);
  bool endsLine(unsigned char c) const;
  bool endsSegment(const unsigned char* p);
  std::string_view getSrcLine(std::int64_t begin);
  bool inEmptySegment(std::int64_t to) const;
  SourcePlace place();
  LineRest longLineRest();
  void storeSrc();
  void storeSrcChar(unsigned char c);
  void clearSrcEcho();

  static constexpr std::size_t kPage = 4096;
  // The file is read to a page boundary, and what is kept of the block before
  // is right in front of it: at 16 bytes after a page boundary the system's
  // copy took five times as long.
  static constexpr std::size_t kKept = kPage;
  // How much text before the next character is kept, for messages.
  static constexpr std::ptrdiff_t kHistory = 1024;
  static_assert(kHistory + 2 * kMaxLine + kWordLimit < kKept);
  static_assert(kHistory > kMaxLine + static_cast<std::ptrdiff_t>(kWordLimit));
  static_assert(kWordLimit > kNumberLimit && kWordLimit < kMaxLine && kPadding >= 16 + 8);

  struct FreeBlock {
    void operator()(unsigned char* block) const {
      ::operator delete (block, std::align_val_t{kPage});
    }
  };

  const SyntaxRules& rules_;
  Reporter& report_;
  CommentSink* comments_;
  FilePtr pFile_;
  std::string sFileName_;

  // The block, and the place in it. The byte at end_ is 0.
  std::unique_ptr<unsigned char, FreeBlock> block_;
  std::size_t blockSize_;           // bytes read at a time
  unsigned char* text_;             // where a read goes
  const unsigned char* keptBegin_;  // the first byte that still holds text
  const unsigned char* cur_;        // the next character
  const unsigned char* end_;
  std::int64_t blockOffset_ = 0;  // of text_ in the file, in bytes
  bool fileEnded_ = false;        // the file has no more than the block holds
  bool atEnd_ = false;

  // The current token, which is also the last item read.
  const unsigned char* sToken_;
  std::size_t tokenSize_ = 0;
  std::uint64_t key_ = 0;
  std::int64_t number_ = 0;
  TokenType iTokenType_ = TokenType::other;
  bool iUnlex_ = false;
  const unsigned char* iTokenCol_ = nullptr;  // a column that is not the token's own
  std::string tokenAside_;                    // the token's text, once its block is gone
  std::string sNumberText_;

  // Lines, counted up to a place when somebody asks.
  std::int64_t countedTo_ = 0;  // offset in the file
  std::int64_t lineEnds_ = 0;   // before it, without the LF of CR LF under -exact
  std::int64_t lineStart_ = 0;  // offset after the last line end, and after the one before
  std::int64_t lineStartBefore_ = 0;
  std::int64_t statementLine_ = 0;

  // Source echo.
  bool echoOn_ = false;
  std::int64_t maxEchoLines_ = -1;
  std::string sSrcEcho_;
  std::int64_t echoFrom_ = 0;  // offset: what is read from here on is not in sSrcEcho_ yet
  std::int64_t echoLine_ = 1;  // the line number there
};

}  // namespace tapforge

#endif  // TAPFORGE_SVF_FILE_CHANNEL_H

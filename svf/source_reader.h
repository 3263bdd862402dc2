#ifndef TAPFORGE_SVF_SOURCE_READER_H
#define TAPFORGE_SVF_SOURCE_READER_H

#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "shell/io/files.h"
#include "shell/io/reporter.h"
#include "svf/syntax_rules.h"

namespace tapforge {

/// The input: an SVF file read once, front to back, a block at a time. It
/// hands out characters from a window of text already in memory; only when the
/// window is used up does the mode's own reader step in and bring the next one.
///
/// While it exists, messages tell their place by it.
///
/// The end of the file is met once quietly: next() hands out a blank and
/// atEnd() becomes true. Reading on is fatal.
class SourceReader : public InputPosition {
 public:
  SourceReader(FilePtr file, std::string name, const SyntaxRules& syntax, Reporter& report);
  ~SourceReader() override { report_.setInput(nullptr); }
  SourceReader(const SourceReader&) = delete;
  SourceReader& operator=(const SourceReader&) = delete;

  const std::string& name() const { return sFileName_; }
  const SyntaxRules& syntax() const { return syntax_; }

  /// The next character; unread() gives back one that came from the window.
  int next() {
    if (cur_ == end_ && nextWindow()) return ' ';
    return *cur_++;
  }
  void unread() { readTo_ = cur_--; }

  /// As next(), for text in parentheses: each character is an item of its own
  /// in messages, but for the ")" that ends the text.
  int nextRaw();

  /// The window: valid until the next refill. At least kPadding bytes behind
  /// its end may be read, but mean nothing.
  const unsigned char* begin() const { return cur_; }
  const unsigned char* end() const { return end_; }
  void advanceTo(const unsigned char* position) { cur_ = position; }
  /// As advanceTo(), but the character there counts as read and given back.
  void peekAt(const unsigned char* position) {
    cur_ = position;
    readTo_ = position + 1;
  }

  /// Called when the window is used up: brings the next one. True when a blank
  /// stands between the two, for a line end or the quiet end of the file; the
  /// new window may then be empty.
  virtual bool nextWindow() = 0;

  bool atEnd() const { return atEnd_; }

  /// Where the last token began, for a caret; and the last item read.
  void markToken(const unsigned char* start) { tokenStart_ = start; }
  void setLastItem(std::string_view item);
  void setLastItem(unsigned char item) {
    sLastItem_[0] = static_cast<char>(item);
    lastItemSize_ = 1;
  }
  std::string_view lastItem() const { return {sLastItem_, lastItemSize_}; }
  /// Takes an item of less than kShortItem characters; so many may be read.
  void setShortItem(const unsigned char* item, std::size_t size) {
    std::memcpy(sLastItem_, item, kShortItem);
    lastItemSize_ = size;
  }

  /// The number of the line that was read last; the first one is 1.
  virtual long lineNumber() const = 0;

  /// Reads away a comment whose "!" was just handed out, with its line end.
  virtual void skipComment() = 0;

  /// After "/" was handed out: reads away a comment and returns -1, or returns
  /// the character that is the token.
  virtual int slash() = 0;

  /// Ends the run: something was to be read past the end of the file.
  [[noreturn]] void endOfFile();

  static constexpr std::size_t kMaxToken = 100;
  static constexpr std::size_t kShortItem = 16;
  static constexpr std::size_t kPadding = 64;

 protected:
  /// Moves the bytes from `keep` on, at most kKept, to the start of the block
  /// and fills it from the file. Returns how far they moved down. Afterwards blockEnd_ tells how
  /// much there is, and fileEnded_ whether the file has no more.
  std::ptrdiff_t fillBlock(const unsigned char* keep);

  const SyntaxRules& syntax_;
  Reporter& report_;
  const unsigned char* cur_;
  const unsigned char* end_;
  const unsigned char* readTo_;  // behind the last character ever given back
  const unsigned char* tokenStart_;
  const unsigned char* blockEnd_;
  bool atEnd_ = false;
  bool fileEnded_ = false;

 private:
  static constexpr std::size_t kBlock = std::size_t{128} * 1024;
  static constexpr std::size_t kPage = 4096;
  // The file is read to a page boundary, with room for the kept bytes before
  // it: at 16 bytes behind one the system's copy took five times as long.
  static constexpr std::size_t kKept = kPage;

  struct FreeBlock {
    void operator()(unsigned char* block) const {
      ::operator delete (block, std::align_val_t{kPage});
    }
  };
  using Block = std::unique_ptr<unsigned char, FreeBlock>;
  static Block makeBlock();

  FilePtr pFile_;
  std::string sFileName_;
  Block block_;
  char sLastItem_[kMaxToken] = {};
  std::size_t lastItemSize_ = 0;
};

}  // namespace tapforge

#endif  // TAPFORGE_SVF_SOURCE_READER_H

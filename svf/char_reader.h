#ifndef TAPFORGE_SVF_CHAR_READER_H
#define TAPFORGE_SVF_CHAR_READER_H

#include <string>
#include <string_view>

#include "svf/source_reader.h"

namespace progmode_svf2ksvf {

using tapforge::Reporter;

/// Told of each comment once it has been read with its line end.
class CommentSink {
 public:
  virtual ~CommentSink() = default;
  virtual void commentRead() = 0;
};

/// Reads character by character: the window is a block of the file and line
/// feeds are ordinary white space in it. A "/" that does not begin a comment
/// is lost, and the character after it becomes a token of its own.
///
/// On request it keeps the first characters of what is read, for a comment in
/// the output (the echo). Lines and echo are worked out from the text already
/// read when somebody asks, never character by character.
class CharReader final : public tapforge::SourceReader {
 public:
  CharReader(tapforge::FilePtr file, std::string name, const tapforge::SyntaxRules& syntax,
             Reporter& report);

  bool nextWindow() override;
  void skipComment() override;
  int slash() override;
  long lineNumber() const override;

  /// "\n[name: line n]:[item]".
  std::string positionText() const override;

  void setCommentSink(CommentSink* comments) { comments_ = comments; }

  /// Turns the echo on: at most 69 characters are kept, and none from lines
  /// after `maxLines` when that is 1 or more.
  void keepEcho(long maxLines);
  /// The text read since the last resetSrcLineBuf(), as far as it is kept.
  std::string_view srcEcho();
  void resetSrcLineBuf();

  static constexpr std::size_t kMaxEcho = 69;

 private:
  /// Behind the last character that was taken from the file.
  const unsigned char* position() const { return cur_ > readTo_ ? cur_ : readTo_; }
  void storeEcho();

  CommentSink* comments_ = nullptr;
  long linesBefore_ = 1;            // the line number at ...
  const unsigned char* countedTo_;  // ... this place in the block
  bool echoOn_ = false;
  long maxEchoLines_ = -1;
  std::string sSrcEcho_;
  const unsigned char* echoFrom_;  // what is read from here on is not in sSrcEcho_ yet
  long echoLine_ = 1;              // the line number there
};

}  // namespace progmode_svf2ksvf

#endif  // TAPFORGE_SVF_CHAR_READER_H

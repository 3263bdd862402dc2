#ifndef TAPFORGE_SVF_LINE_READER_H
#define TAPFORGE_SVF_LINE_READER_H

#include <string>
#include <string_view>

#include "svf/source_reader.h"

namespace progmode_svf2tapbus {

using tapforge::Reporter;

/// Where comments go: they reach the output when they are met, also in the
/// middle of a statement.
class CommentSink {
 public:
  virtual ~CommentSink() = default;
  /// One comment is a beginComment() with its text from "!" or "//" on, an
  /// appendComment() for each further part of a line that was cut, and an
  /// endComment().
  virtual void beginComment(std::string_view text) = 0;
  virtual void appendComment(std::string_view text) = 0;
  virtual void endComment() = 0;
};

/// Reads line by line: the window is the rest of the current line, and a line
/// end reads as one blank. A line feed and a carriage return each end a line,
/// so the lines of a CR LF file count twice. A line is cut at 199 characters;
/// its parts count as one line and read on without a break.
class LineReader final : public tapforge::SourceReader {
 public:
  LineReader(tapforge::FilePtr file, std::string name, const tapforge::SyntaxRules& syntax,
             Reporter& report, CommentSink& comments);

  bool nextWindow() override;
  void skipComment() override;
  int slash() override;
  long lineNumber() const override { return lLineNum_; }

  /// "\nFile [name]\tLine n (last item read [item]):\nsource line\n" and, where
  /// the last token lies on that line, a caret under it.
  std::string positionText() const override;

  /// The part of the current line that has not been read yet.
  std::string_view restOfLine() const;

 private:
  static constexpr std::ptrdiff_t kMaxLine = 199;

  void getSrcLine();
  void copyComment(const unsigned char* start);
  std::string_view currentLine() const;

  CommentSink& comments_;
  const unsigned char* lineBegin_;
  const unsigned char* nextLine_;
  long lLineNum_ = 0;
  bool lineCut_ = false;    // the current line goes on in the next read
  bool exhausted_ = false;  // the current line is the last one
};

}  // namespace progmode_svf2tapbus

#endif  // TAPFORGE_SVF_LINE_READER_H

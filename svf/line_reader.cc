#include "svf/line_reader.h"

#include <algorithm>
#include <utility>

#include "shell/io/text.h"
#include "svf/line_end.h"

namespace progmode_svf2tapbus {
namespace {

std::string_view view(const unsigned char* begin, const unsigned char* end) {
  return {reinterpret_cast<const char*>(begin), static_cast<std::size_t>(end - begin)};
}

}  // namespace

LineReader::LineReader(tapforge::FilePtr file, std::string name,
                       const tapforge::SyntaxRules& syntax, Reporter& report, CommentSink& comments)
    : SourceReader(std::move(file), std::move(name), syntax, report),
      comments_(comments),
      lineBegin_(cur_),
      nextLine_(cur_) {}

void LineReader::getSrcLine() {
  if (exhausted_) {
    if (atEnd_) endOfFile();
    atEnd_ = true;
    return;
  }
  if (!lineCut_) ++lLineNum_;
  lineCut_ = false;
  if (blockEnd_ - nextLine_ <= kMaxLine && !fileEnded_) nextLine_ -= fillBlock(nextLine_);
  lineBegin_ = cur_ = tokenStart_ = readTo_ = nextLine_;
  const unsigned char* limit = std::min(lineBegin_ + kMaxLine, blockEnd_);
  end_ = tapforge::findLineEnd(lineBegin_, limit);
  if (end_ != limit) {
    nextLine_ = end_ + 1;
    return;
  }
  nextLine_ = end_;
  // A full line is cut without a look at what follows, so a line end right
  // behind it makes an empty rest.
  lineCut_ = end_ - lineBegin_ == kMaxLine;
  exhausted_ = !lineCut_;
}

bool LineReader::nextWindow() {
  const bool wasCut = lineCut_;
  getSrcLine();
  // The rest of a cut line reads on; every other line end is a blank.
  return !wasCut || cur_ == end_;
}

void LineReader::skipComment() { copyComment(cur_ - 1); }

int LineReader::slash() {
  const bool behindCut = cur_ == end_ && lineCut_;
  if (behindCut) nextWindow();
  if (cur_ == end_ || *cur_ != '/') return '/';
  // The text of a comment is taken from one part of the line.
  if (behindCut) report_.rangeCheck(-1, 0, end_ - lineBegin_, "skCm");
  copyComment(cur_ - 1);
  return -1;
}

void LineReader::copyComment(const unsigned char* start) {
  comments_.beginComment(view(start, end_));
  while (lineCut_) {
    getSrcLine();
    comments_.appendComment(view(cur_, end_));
  }
  comments_.endComment();
  getSrcLine();
}

std::string_view LineReader::currentLine() const { return view(lineBegin_, end_); }

std::string_view LineReader::restOfLine() const { return view(cur_, end_); }

std::string LineReader::positionText() const {
  const std::string_view line = currentLine();
  std::string text = tapforge::concat("\nFile [", name(), "]\tLine ", lLineNum_,
                                      " (last item read [", lastItem(), "]):\n", line, "\n");
  const auto column = static_cast<std::size_t>(tokenStart_ - lineBegin_);
  if (column >= line.size()) return text;
  for (const char c : line.substr(0, column)) text += c == '\t' ? '\t' : ' ';
  text += "^*\n";
  return text;
}

}  // namespace progmode_svf2tapbus

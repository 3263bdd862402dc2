#include <algorithm>
#include <functional>

#include "io/text.h"
#include "svf/char_class.h"
#include "svf/file_channel.h"

namespace tapforge {
namespace {

// The line ends in [begin, end). Blocks of which a byte can hold the count let the
// compiler compare many characters at a time, on every machine.
std::int64_t countLineEnds(const unsigned char* begin, const unsigned char* end, LineEnds which) {
  constexpr std::ptrdiff_t kAtOnce = 240;
  const unsigned char other = which == LineEnds::lineFeed ? '\n' : '\r';
  std::int64_t total = 0;
  while (begin != end) {
    const unsigned char* const stop = begin + std::min(kAtOnce, end - begin);
    unsigned char found = 0;
    for (; begin != stop; ++begin) {
      found = static_cast<unsigned char>(found + (*begin == '\n' || *begin == other ? 1 : 0));
    }
    total += found;
  }
  return total;
}

// The LFs in [begin, end) that a CR stands in front of, which may lie before `begin`.
std::int64_t countPairs(const unsigned char* begin, const unsigned char* end) {
  std::int64_t count = 0;
  for (const unsigned char* p = begin; p != end; ++p) count += *p == '\n' && p[-1] == '\r' ? 1 : 0;
  return count;
}

}  // namespace

bool FileChannel::inBlock(const unsigned char* p) const {
  // A token whose block is gone lies in another array.
  const std::less<> before;
  return !before(p, keptBegin_) && !before(end_, p);
}

// The offset up to which the source counts as read. A word or number has been
// read with the character after it, and the quiet end of the file is one
// character more.
std::int64_t FileChannel::readTo() const {
  if (atEnd_) return offsetOf(end_) + 1;
  std::int64_t to = offsetOf(cur_);
  if (inBlock(sToken_)) {
    const std::int64_t tokenEnd = offsetOf(sToken_ + tokenSize_) + (lookedAhead() ? 1 : 0);
    to = std::max(to, tokenEnd);
  }
  return to;
}

bool FileChannel::endsLine(unsigned char c) const {
  return c == '\n' || (c == '\r' && rules_.lineEnds == LineEnds::lineFeedOrReturn);
}

void FileChannel::countLinesTo(std::int64_t offset) {
  offset = std::min(offset, offsetOf(end_));
  if (offset <= countedTo_) return;
  const unsigned char* p = at(offset);
  const std::int64_t found = countLineEnds(at(countedTo_), p, rules_.lineEnds);
  if (rules_.exact) lineEnds_ -= countPairs(at(countedTo_), p);
  countedTo_ = offset;
  if (found == 0) return;
  lineEnds_ += found;
  const auto lastStart = [&] {
    while (!endsLine(p[-1])) --p;
    return offsetOf(p--);
  };
  const std::int64_t last = lastStart();
  lineStartBefore_ = found > 1 ? lastStart() : lineStart_;
  lineStart_ = last;
}

// A cut line is read in segments of kMaxLine characters, the last of which is empty
// when the length is a multiple of that. Its line end is read twice, as the end of
// the empty segment and as that of the line, so after the first time the empty
// segment is still the place.
bool FileChannel::inEmptySegment(std::int64_t to) const {
  const std::int64_t length = lineStart_ - 1 - lineStartBefore_;
  return rules_.linesAreCut && to == lineStart_ && lineEnds_ > 0 && lookedAhead() &&
         inBlock(sToken_) && to == offsetOf(sToken_ + tokenSize_) + 1 && length > 0 &&
         length % kMaxLine == 0;
}

std::int64_t FileChannel::lineNumber() {
  const std::int64_t to = readTo();
  countLinesTo(to);
  return inEmptySegment(to) ? lineEnds_ : lineEnds_ + 1;
}

void FileChannel::noteStatement() {
  countLinesTo(tokenBegin());
  statementLine_ = lineEnds_ + 1;
}

// Whether the line is cut before this character; it must lie in the line of the
// character before it.
bool FileChannel::endsSegment(const unsigned char* p) {
  countLinesTo(offsetOf(p - 1));
  return (offsetOf(p) - lineStart_) % kMaxLine == 0;
}

// The segment of a line from `begin` (an offset) on, up to its end.
std::string_view FileChannel::getSrcLine(std::int64_t begin) {
  std::int64_t length = 0;
  for (; length < kMaxLine; ++length) {
    if (at(begin + length) == end_ && !fill()) break;
    if (endsLine(*at(begin + length))) break;
  }
  return {reinterpret_cast<const char*>(at(begin)), static_cast<std::size_t>(length)};
}

SourcePlace FileChannel::place() {
  const std::int64_t to = readTo();
  SourcePlace place{sFileName_, lineNumber(), {}, {}, 0, statementLine_};
  if (rules_.linesAreCut && !inEmptySegment(to)) {
    // The segment that the last character read belongs to.
    const std::int64_t read = to - lineStart_;
    const std::int64_t begin = std::min(
        lineStart_ + std::max<std::int64_t>(read - 1, 0) / kMaxLine * kMaxLine, offsetOf(end_));
    place.sSrcLine = getSrcLine(begin);
    const unsigned char* const token = iTokenCol_ != nullptr ? iTokenCol_ : sToken_;
    if (inBlock(token)) place.iTokenCol = std::max<std::int64_t>(offsetOf(token) - begin, 0);
  }
  place.sLastItem = tokenAsWritten();
  // A line end that is read as a character of a value is shown as a blank.
  if (rules_.linesAreCut && (place.sLastItem == "\n" || place.sLastItem == "\r")) {
    place.sLastItem = " ";
  }
  return place;
}

std::string FileChannel::statementText() {
  return statementLine_ > 0 ? concat("\n", kStatementLine, statementLine_) : "";
}

std::string FileChannel::positionText() { return rules_.positionText(place()); }

FileChannel::LineRest FileChannel::longLineRest() {
  std::ptrdiff_t blanks = 0;
  // More blanks than a segment of a line can hold end the segment.
  for (; blanks <= kMaxLine; ++blanks) {
    if (cur_ + blanks == end_ && !fill()) return {true, 0};
    const unsigned char c = cur_[blanks];
    if (endsLine(c)) return {true, 0};
    if (!isSpace(c)) break;
  }
  countLinesTo(offsetOf(cur_));
  const std::int64_t read = offsetOf(cur_) - lineStart_;
  const std::int64_t segmentEnd = (read + kMaxLine - 1) / kMaxLine * kMaxLine;
  if (read + blanks >= segmentEnd) return {true, 0};
  return {false, static_cast<std::size_t>(blanks)};
}

void FileChannel::keepSrcEcho(std::int64_t maxLines) {
  echoOn_ = true;
  maxEchoLines_ = maxLines;
}

void FileChannel::storeSrcChar(unsigned char c) {
  sSrcEcho_ += static_cast<char>(c);
  if (c == '\n') ++echoLine_;
}

void FileChannel::storeSrc() {
  if (!echoOn_) return;
  const std::int64_t to = std::min(readTo(), offsetOf(end_));
  const auto wanted = [this] {
    return sSrcEcho_.size() < kMaxEcho && (maxEchoLines_ < 1 || echoLine_ <= maxEchoLines_);
  };
  while (echoFrom_ < to && wanted()) storeSrcChar(*at(echoFrom_++));
  if (echoFrom_ < to) echoLine_ += countLineEnds(at(echoFrom_), at(to), LineEnds::lineFeed);
  echoFrom_ = std::max(echoFrom_, to);
}

std::string_view FileChannel::srcEcho() {
  storeSrc();
  return sSrcEcho_;
}

void FileChannel::clearSrcEcho() {
  storeSrc();
  sSrcEcho_.clear();
}

}  // namespace tapforge

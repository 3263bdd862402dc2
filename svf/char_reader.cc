#include "svf/char_reader.h"

#include <cstring>
#include <utility>

#include "shell/io/text.h"
#include "svf/line_end.h"

namespace progmode_svf2ksvf {

using tapforge::countLineFeeds;

CharReader::CharReader(tapforge::FilePtr file, std::string name,
                       const tapforge::SyntaxRules& syntax, Reporter& report)
    : SourceReader(std::move(file), std::move(name), syntax, report),
      countedTo_(cur_),
      echoFrom_(cur_) {}

bool CharReader::nextWindow() {
  if (atEnd_) endOfFile();
  storeEcho();
  linesBefore_ += countLineFeeds(countedTo_, cur_);
  cur_ -= fillBlock(cur_);
  readTo_ = tokenStart_ = countedTo_ = echoFrom_ = cur_;
  end_ = blockEnd_;
  atEnd_ = cur_ == end_;
  return atEnd_;
}

void CharReader::skipComment() {
  for (;;) {
    const auto size = static_cast<std::size_t>(end_ - cur_);
    if (const void* lineEnd = std::memchr(cur_, '\n', size); lineEnd != nullptr) {
      cur_ = static_cast<const unsigned char*>(lineEnd) + 1;
      break;
    }
    cur_ = end_;
    if (nextWindow()) break;
  }
  if (comments_ != nullptr) comments_->commentRead();
}

int CharReader::slash() {
  const int c = next();
  if (c != '/') return c;
  skipComment();
  return -1;
}

long CharReader::lineNumber() const {
  return linesBefore_ + countLineFeeds(countedTo_, position());
}

std::string CharReader::positionText() const {
  return tapforge::concat("\n[", name(), ": line ", lineNumber(), "]:[", lastItem(), "]");
}

void CharReader::keepEcho(long maxLines) {
  echoOn_ = true;
  maxEchoLines_ = maxLines;
}

void CharReader::storeEcho() {
  if (!echoOn_) return;
  const unsigned char* to = position();
  for (; echoFrom_ != to && sSrcEcho_.size() < kMaxEcho; ++echoFrom_) {
    if (maxEchoLines_ >= 1 && echoLine_ > maxEchoLines_) break;
    sSrcEcho_ += static_cast<char>(*echoFrom_);
    if (*echoFrom_ == '\n') ++echoLine_;
  }
  echoLine_ += countLineFeeds(echoFrom_, to);
  echoFrom_ = to;
}

std::string_view CharReader::srcEcho() {
  storeEcho();
  return sSrcEcho_;
}

void CharReader::resetSrcLineBuf() {
  storeEcho();
  sSrcEcho_.clear();
}

}  // namespace progmode_svf2ksvf

#include "svf/file_channel.h"

#include <algorithm>
#include <cassert>
#include <cstdio>
#include <utility>

#include "io/files.h"

namespace tapforge {
namespace {

unsigned char* newBlock(std::size_t size, std::size_t alignment) {
  auto* block = static_cast<unsigned char*>(::operator new (size, std::align_val_t{alignment}));
  std::memset(block, 0, size);
  return block;
}

}  // namespace

FileChannel::FileChannel(InputFile& input, const SyntaxRules& rules, Reporter& report,
                         CommentSink* comments)
    : rules_(rules),
      report_(report),
      comments_(comments),
      pFile_(std::move(input.file)),
      sFileName_(input.name),
      block_(newBlock(kKept + gBlockSize + kPadding, kPage)),
      blockSize_(gBlockSize),
      text_(block_.get() + kKept),
      keptBegin_(text_),
      cur_(text_),
      end_(text_),
      sToken_(text_) {
  // The block is the only buffer; a second one would just copy again.
  std::setvbuf(pFile_.get(), nullptr, _IONBF, 0);
  report_.setInput(this);
}

// Reads the next block after the text from cur_ on and a little of the text
// before it, which move to its front. False, with nothing new, at the end of the
// file. Views of the block then mean nothing; the channel's own pointers follow.
bool FileChannel::fill() {
  if (fileEnded_) return false;
  storeSrc();
  countLinesTo(offsetOf(cur_));

  const unsigned char* const kept = cur_ - std::min(kHistory, cur_ - keptBegin_);
  const auto count = static_cast<std::size_t>(end_ - kept);
  assert(count <= kKept);
  if (inBlock(sToken_) && sToken_ < kept) {
    tokenAside_ = tokenAsWritten();
    sToken_ = reinterpret_cast<const unsigned char*>(tokenAside_.data());
  }
  const bool tokenMoves = inBlock(sToken_);
  const bool columnMoves = iTokenCol_ != nullptr && iTokenCol_ >= kept;
  const std::ptrdiff_t shift = (text_ - count) - kept;
  std::memmove(text_ - count, kept, count);
  blockOffset_ = offsetOf(end_);
  keptBegin_ = text_ - count;
  cur_ += shift;
  if (tokenMoves) sToken_ += shift;
  if (iTokenCol_ != nullptr) iTokenCol_ = columnMoves ? iTokenCol_ + shift : keptBegin_;

  const std::size_t got = std::fread(text_, 1, blockSize_, pFile_.get());
  end_ = text_ + got;
  std::memset(text_ + got, 0, kPadding);
  if (std::ferror(pFile_.get()) != 0) {
    report_.fatal(fileErrorText(sFileName_), Where::nowhere);
  }
  fileEnded_ = got < blockSize_;
  return got > 0;
}

int FileChannel::getFChanChar() {
  if (cur_ == end_ && !fill()) {
    if (atEnd_) endOfFile();
    atEnd_ = true;
    if (rules_.linesAreCut) {
      iTokenCol_ = sToken_;
      sToken_ = reinterpret_cast<const unsigned char*>(" ");
      tokenSize_ = 1;
    }
    return ' ';
  }
  const unsigned char* const c = cur_;
  if (*c == ')') {
    ++cur_;
  } else {
    advancePast(c, c + 1);
  }
  return *c;
}

// A comment begins at `start`. Reads it with its line end.
void FileChannel::skipComment(const unsigned char* start) {
  iTokenCol_ = cur_ = start;
  const auto endsLine = [both = rules_.lineEnds == LineEnds::lineFeedOrReturn](unsigned char c) {
    return c == '\n' || (both && c == '\r');
  };
  for (bool lineEnded = false; !lineEnded && !atEnd_;) {
    const unsigned char* const lineEnd = std::find_if(cur_, end_, endsLine);
    if (comments_ != nullptr) {
      comments_->commentText(
          {reinterpret_cast<const char*>(cur_), static_cast<std::size_t>(lineEnd - cur_)});
    }
    lineEnded = lineEnd != end_;
    cur_ = lineEnded ? lineEnd + 1 : lineEnd;
    if (!lineEnded && !fill()) atEnd_ = true;
  }
  if (rules_.blankIsItem) {
    advancePast(cur_, cur_);
    tokenSize_ = 0;
  }
  if (comments_ != nullptr) comments_->commentEnd();
}

}  // namespace tapforge

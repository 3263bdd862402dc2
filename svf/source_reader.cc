#include "svf/source_reader.h"

#include <algorithm>
#include <utility>

namespace tapforge {

SourceReader::SourceReader(FilePtr file, std::string name, Reporter& report)
    : report_(report),
      pFile_(std::move(file)),
      sFileName_(std::move(name)),
      block_(new unsigned char[kBlock + kPadding]()) {
  std::setvbuf(pFile_.get(), nullptr, _IONBF, 0);
  cur_ = end_ = readTo_ = tokenStart_ = blockEnd_ = block_.get();
  report_.setInput(this);
}

void SourceReader::setLastItem(std::string_view item) {
  lastItemSize_ = std::min(item.size(), kMaxToken);
  std::copy_n(item.begin(), lastItemSize_, sLastItem_);
}

int SourceReader::nextRaw() {
  if (cur_ == end_ && nextWindow()) {
    // Where a value may end with the file, the end is no character of it.
    if (!atEnd_ || !report_.dialect().hexEndsWithFile) setLastItem(' ');
    return ' ';
  }
  if (*cur_ != ')') {
    markToken(cur_);
    setLastItem(*cur_);
  }
  return *cur_++;
}

void SourceReader::endOfFile() {
  const Dialect& dialect = report_.dialect();
  report_.fatal(dialect.endOfFile, dialect.endOfFileHasPosition ? Where::input : Where::nowhere);
}

std::ptrdiff_t SourceReader::fillBlock(const unsigned char* keep) {
  const std::ptrdiff_t moved = keep - block_.get();
  const auto kept = static_cast<std::size_t>(blockEnd_ - keep);
  std::memmove(block_.get(), keep, kept);
  std::size_t size = kept;
  if (!fileEnded_) {
    const std::size_t got = std::fread(block_.get() + kept, 1, kBlock - kept, pFile_.get());
    if (std::ferror(pFile_.get()) != 0) report_.chkFileErr(sFileName_);
    size += got;
    fileEnded_ = size < kBlock;
  }
  blockEnd_ = block_.get() + size;
  return moved;
}

}  // namespace tapforge

#include "svf/source_reader.h"

#include <algorithm>
#include <new>
#include <utility>

namespace tapforge {

SourceReader::SourceReader(FilePtr file, std::string name, const SyntaxRules& syntax,
                           Reporter& report)
    : syntax_(syntax),
      report_(report),
      pFile_(std::move(file)),
      sFileName_(std::move(name)),
      block_(makeBlock()) {
  std::setvbuf(pFile_.get(), nullptr, _IONBF, 0);
  cur_ = end_ = readTo_ = tokenStart_ = blockEnd_ = block_.get() + kKept;
  report_.setInput(this);
}

void SourceReader::setLastItem(std::string_view item) {
  lastItemSize_ = std::min(item.size(), kMaxToken);
  std::copy_n(item.begin(), lastItemSize_, sLastItem_);
}

SourceReader::Block SourceReader::makeBlock() {
  constexpr std::size_t kSize = kKept + kBlock + kPadding;
  Block block(static_cast<unsigned char*>(::operator new (kSize, std::align_val_t{kPage})));
  std::memset(block.get(), 0, kSize);
  return block;
}

int SourceReader::nextRaw() {
  if (cur_ == end_ && nextWindow()) {
    // Where a value may end with the file, the end is no character of it.
    if (!atEnd_ || !syntax_.hexEndsWithFile) setLastItem(' ');
    return ' ';
  }
  if (*cur_ != ')') {
    markToken(cur_);
    setLastItem(*cur_);
  }
  return *cur_++;
}

void SourceReader::endOfFile() {
  report_.fatal(syntax_.endOfFile, syntax_.endOfFileHasPosition ? Where::input : Where::nowhere);
}

std::ptrdiff_t SourceReader::fillBlock(const unsigned char* keep) {
  unsigned char* const text = block_.get() + kKept;
  const auto kept = static_cast<std::size_t>(blockEnd_ - keep);
  std::memmove(text - kept, keep, kept);
  std::size_t got = 0;
  if (!fileEnded_) {
    got = std::fread(text, 1, kBlock, pFile_.get());
    if (std::ferror(pFile_.get()) != 0) report_.chkFileErr(sFileName_);
    fileEnded_ = got < kBlock;
  }
  blockEnd_ = text + got;
  return keep - (text - kept);
}

}  // namespace tapforge

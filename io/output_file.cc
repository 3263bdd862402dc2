#include "io/output_file.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "io/files.h"

namespace tapforge {

OutputFile::OutputFile(FilePtr file, std::string name)
    : pFile_(std::move(file)),
      sFileName_(std::move(name)),
      // Pipes and devices hold nothing either.
      begun_(fileStatus(pFile_.get()).size == 0),
      block_(new char[gBlockSize + kReserve]),
      next_(block_.get()),
      blockEnd_(block_.get() + gBlockSize) {
  // The block is the only buffer; a second one would just copy again.
  std::setvbuf(pFile_.get(), nullptr, _IONBF, 0);
}

void OutputFile::begin() {
  if (std::exchange(begun_, true) || pFile_ == nullptr) return;
  if (!emptyFile(pFile_.get())) fail();
}

void OutputFile::writeLarge(std::string_view text) {
  while (!text.empty()) {
    if (next_ >= blockEnd_) flush();
    const std::size_t part = std::min(text.size(), static_cast<std::size_t>(blockEnd_ - next_));
    std::memcpy(next_, text.data(), part);
    next_ += part;
    text.remove_prefix(part);
  }
}

void OutputFile::flush() {
  const auto size = static_cast<std::size_t>(next_ - block_.get());
  next_ = block_.get();
  begin();
  if (size == 0 || pFile_ == nullptr) return;
  if (std::fwrite(block_.get(), 1, size, pFile_.get()) != size) fail();
}

void OutputFile::close() {
  flush();
  if (pFile_ != nullptr && std::fclose(pFile_.release()) != 0) fail();
}

void OutputFile::fail() {
  pFile_.reset();
  throw WriteFailed{sFileName_};
}

}  // namespace tapforge

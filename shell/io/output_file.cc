#include "shell/io/output_file.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <utility>

#include "shell/io/reporter.h"

namespace tapforge {

OutputFile::OutputFile(FilePtr file, std::string name, Reporter& report)
    : pFile_(std::move(file)),
      sFileName_(std::move(name)),
      report_(report),
      block_(new char[kBlock]),
      next_(block_.get()),
      end_(block_.get() + kBlock) {
  // The block below is the only buffer; a second one would just copy again.
  std::setvbuf(pFile_.get(), nullptr, _IONBF, 0);
}

void OutputFile::writeDecimal(long value) {
  constexpr std::size_t kMostDigits = 20;
  char* text = reserve(kMostDigits);
  next_ = std::to_chars(text, text + kMostDigits, value).ptr;
}

void OutputFile::writeLarge(std::string_view text) {
  while (!text.empty()) {
    if (room() == 0) flush();
    const std::size_t part = std::min(text.size(), room());
    std::memcpy(next_, text.data(), part);
    next_ += part;
    text.remove_prefix(part);
  }
}

void OutputFile::flush() {
  const auto size = static_cast<std::size_t>(next_ - block_.get());
  next_ = block_.get();
  if (size == 0 || pFile_ == nullptr) return;
  if (std::fwrite(block_.get(), 1, size, pFile_.get()) != size) fail();
}

void OutputFile::close() {
  flush();
  if (pFile_ != nullptr && std::fclose(pFile_.release()) != 0) fail();
}

void OutputFile::fail() {
  pFile_.reset();
  report_.chkFileErr(sFileName_);
}

}  // namespace tapforge

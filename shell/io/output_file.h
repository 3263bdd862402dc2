#ifndef TAPFORGE_SHELL_IO_OUTPUT_FILE_H
#define TAPFORGE_SHELL_IO_OUTPUT_FILE_H

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "shell/io/files.h"

namespace tapforge {

class Reporter;

/// A file that is written front to back: the output, the listing or the log.
/// Text is gathered in one block; a block that cannot be written whole ends
/// the run with the fatal "name file error", after which the file takes
/// nothing more.
class OutputFile {
 public:
  /// Takes over an open handle. Nothing of it may have been written yet.
  OutputFile(FilePtr file, std::string name, Reporter& report);

  const std::string& name() const { return sFileName_; }

  void write(std::string_view text) {
    if (text.size() > room()) {
      writeLarge(text);
      return;
    }
    std::memcpy(next_, text.data(), text.size());
    next_ += text.size();
  }

  void put(char c) {
    *reserve(1) = c;
    ++next_;
  }
  void writeDecimal(long value);

  /// Room for `count` (at most kReserve) characters to fill in place; advance()
  /// then says up to where they were filled.
  char* reserve(std::size_t count) {
    if (count > room()) flush();
    return next_;
  }
  void advance(char* end) { next_ = end; }

  static constexpr std::size_t kReserve = 4096;

  /// Hands all text so far to the system.
  void flush();

  /// Flushes and closes, so that a failure at the very end shows too. The file
  /// takes nothing afterwards.
  void close();

 private:
  std::size_t room() const { return static_cast<std::size_t>(end_ - next_); }
  void writeLarge(std::string_view text);
  void fail();

  static constexpr std::size_t kBlock = std::size_t{128} * 1024;

  FilePtr pFile_;
  std::string sFileName_;
  Reporter& report_;
  std::unique_ptr<char[]> block_;
  char* next_;
  char* end_;
};

}  // namespace tapforge

#endif  // TAPFORGE_SHELL_IO_OUTPUT_FILE_H

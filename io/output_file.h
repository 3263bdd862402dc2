#ifndef TAPFORGE_IO_OUTPUT_FILE_H
#define TAPFORGE_IO_OUTPUT_FILE_H

#include <cassert>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "io/system.h"

namespace tapforge {

/// Thrown when a file does not take what is written. The file is then closed,
/// and takes what is written later without a word, so a file fails only once.
struct WriteFailed {
  std::string name;
};

/// A file that is written front to back: the output, the listing or the log.
/// Text is gathered in memory and goes to the system in blocks of gBlockSize
/// bytes, so any of the members but name() can throw WriteFailed.
class OutputFile {
 public:
  /// Takes over an open handle that nothing has been written to.
  OutputFile(FilePtr file, std::string name);

  const std::string& name() const { return sFileName_; }

  /// Empties a file that existed before; until then it keeps what it holds. The
  /// first flush() does the same.
  void begin();
  /// False while the file holds what it held before.
  bool begun() const { return begun_; }

  void write(std::string_view text) {
    if (static_cast<std::ptrdiff_t>(text.size()) > blockEnd_ - next_) {
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

  /// Space for `count` characters, at most kReserve, to be filled in place.
  /// Call advance() with the end of what was filled in; anything written
  /// before that call uses the same space.
  char* reserve([[maybe_unused]] std::size_t count) {
    assert(count <= kReserve);
    if (next_ >= blockEnd_) flush();
    return next_;
  }
  void advance(char* end) {
    assert(end >= next_ && end <= blockEnd_ + kReserve);
    next_ = end;
  }

  static constexpr std::size_t kReserve = 4096;

  /// Hands all text so far to the system.
  void flush();

  /// Flushes and closes the file, so that a failure at the very end shows too.
  void close();

 private:
  void writeLarge(std::string_view text);
  [[noreturn]] void fail();

  FilePtr pFile_;  // null after close() and after a failure
  std::string sFileName_;
  bool begun_;
  // A block is followed by kReserve bytes, into which the last space reserved
  // may reach.
  std::unique_ptr<char[]> block_;
  char* next_;
  char* blockEnd_;
};

}  // namespace tapforge

#endif  // TAPFORGE_IO_OUTPUT_FILE_H

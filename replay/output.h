#ifndef TAPFORGE_REPLAY_OUTPUT_H_
#define TAPFORGE_REPLAY_OUTPUT_H_

#include <cstdio>
#include <string>
#include <string_view>

#include "replay/fault.h"

namespace tapforge_replay {

/// Text with each character as "\x1b" that is no printable ASCII and not in `kept`.
std::string printable(std::string_view text, std::string_view kept = {});

/// What writing to standard output throws when nobody reads it any more.
struct ClosedPipe : Fault {
  using Fault::Fault;
};

/// A file or standard output that is written from front to back. Every function
/// throws Fault when not all can be written.
class Output {
 public:
  /// Standard output.
  Output() : name_("standard output"), file_(stdout) {}
  /// A new file, or one that is emptied.
  explicit Output(const std::string& path);
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;
  ~Output();

  Output& operator<<(std::string_view text);
  void close();

 private:
  [[noreturn]] void fail() const;

  std::string name_;
  std::FILE* file_;
};

}  // namespace tapforge_replay

#endif  // TAPFORGE_REPLAY_OUTPUT_H_

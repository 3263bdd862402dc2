#ifndef TAPFORGE_TESTS_SUPPORT_FAKES_H
#define TAPFORGE_TESTS_SUPPORT_FAKES_H

#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "io/files.h"
#include "io/reporter.h"
#include "svf/file_channel.h"

namespace tapforge::testing {

/// Keeps what it is told, as on a screen that is on.
class RecordingReporter final : public Reporter {
 public:
  explicit RecordingReporter(const MessageStyle& style) : Reporter(style) { setScreen(true); }
  std::string text;
  std::string status;

  /// The first line of the first message, without its kind.
  std::string_view saying() const {
    return std::string_view(text).substr(0, text.find('\n', 1)).substr(10);
  }

 private:
  void print(std::string_view message) override { text += message; }
  void printStatus(std::string_view line) override { status += line; }
};

/// A file without a name that holds a text, open at its start.
FilePtr fileWith(std::string_view text);

/// Files opened while it exists have blocks of this size.
class WithBlockSize {
 public:
  explicit WithBlockSize(std::size_t size) : before_(std::exchange(gBlockSize, size)) {}
  ~WithBlockSize() { gBlockSize = before_; }
  WithBlockSize(const WithBlockSize&) = delete;
  WithBlockSize& operator=(const WithBlockSize&) = delete;

 private:
  std::size_t before_;
};

/// The last one is that of the program.
inline const std::array<std::size_t, 6> kBlockSizes = {1, 2, 3, 7, 16, std::size_t{128} << 10};

/// An SVF text as the parsers see it.
struct Source {
  explicit Source(std::string_view text, const SyntaxRules& rules, CommentSink* comments = nullptr)
      : input{"input", fileWith(text)}, channel(input, rules, report, comments) {}

  static constexpr MessageStyle kStyle{};
  InputFile input;
  RecordingReporter report{kStyle};
  FileChannel channel;
};

/// The modes' rules.
const SyntaxRules& scriptRules();
const SyntaxRules& ksvfRules();

}  // namespace tapforge::testing

#endif  // TAPFORGE_TESTS_SUPPORT_FAKES_H

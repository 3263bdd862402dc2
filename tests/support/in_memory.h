#ifndef TAPFORGE_TESTS_SUPPORT_IN_MEMORY_H
#define TAPFORGE_TESTS_SUPPORT_IN_MEMORY_H

#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "script/script_mode.h"
#include "svf/file_channel.h"
#include "vector/ksvf_mode.h"

namespace tapforge::testing {

/// What a conversion in this process gave.
struct Converted {
  std::string output;
  std::string listing;   // mode 1 only
  std::string messages;  // as on standard output
  std::string status;    // progress lines, as on a screen that is on
  bool good = false;     // status 0
};

Converted toScript(std::string_view svf, const progmode_svf2tapbus::ScriptVars& vars = {});

/// The record length must be given, as the option check gives it.
Converted toKsvf(std::string_view svf,
                 const progmode_svf2ksvf::KsvfVars& vars = {.lFpgaRecSize = 128});

/// Keeps what it is told, as on a screen that is on.
class RecordingReporter final : public Reporter {
 public:
  explicit RecordingReporter(const MessageStyle& style) : Reporter(style) { setScreen(true); }
  std::string text;
  std::string status;

 private:
  void print(std::string_view message) override { text += message; }
  void printStatus(std::string_view line) override { status += line; }
};

/// A file without a name that holds a text, open at its start.
FilePtr fileWith(std::string_view text);

/// An SVF text as the parsers see it.
struct Source {
  explicit Source(std::string_view text, const SyntaxRules& rules, CommentSink* comments = nullptr)
      : input{"input", fileWith(text)}, channel(input, rules, report, comments) {}

  /// The first line of the first message, without its kind.
  std::string_view saying() const {
    return std::string_view(report.text).substr(0, report.text.find('\n', 1)).substr(10);
  }

  static constexpr MessageStyle kStyle{};
  InputFile input;
  RecordingReporter report{kStyle};
  FileChannel channel;
};

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

}  // namespace tapforge::testing

#endif  // TAPFORGE_TESTS_SUPPORT_IN_MEMORY_H

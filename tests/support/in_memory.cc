#include "tests/support/in_memory.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>

namespace tapforge::testing {

FilePtr fileWith(std::string_view text) {
#ifdef _WIN32
  // std::tmpfile() may give two processes one file. This one is gone when it is closed: "D".
  static const std::string ours = std::to_string(std::random_device()());
  static int count = 0;
  const std::string name = "tapforge" + ours + "-" + std::to_string(++count);
  const std::string path = (std::filesystem::temp_directory_path() / name).string();
  FilePtr file(std::fopen(path.c_str(), "w+bTD"));
#else
  FilePtr file(std::tmpfile());
#endif
  if (file == nullptr || std::fwrite(text.data(), 1, text.size(), file.get()) != text.size()) {
    std::abort();
  }
  std::rewind(file.get());
  return file;
}

namespace {

/// A file to be written, and to be read while it is still open.
struct Output {
  explicit Output(const char* name) : Output(fileWith(""), name) {}
  Output(FilePtr open, const char* name) : handle(open.get()), file(std::move(open), name) {}

  std::string text() {
    file.flush();
    std::string all(static_cast<std::size_t>(std::ftell(handle)), '\0');
    std::rewind(handle);
    if (std::fread(all.data(), 1, all.size(), handle) != all.size()) std::abort();
    return all;
  }

  std::FILE* handle;
  OutputFile file;
};

/// Runs `convert` on an input, an output, a listing and a reporter.
template <typename Convert>
Converted converted(std::string_view svf, const MessageStyle& style, Convert convert) {
  RecordingReporter report(style);
  Output output("output");
  Output listing("listing");
  bool good = false;
  try {
    InputFile input{"input", fileWith(svf)};
    good = convert(input, output.file, listing.file, report);
  } catch (const ProgramEnd&) {
  }
  return {output.text(), listing.text(), report.text, report.status, good};
}

}  // namespace

Converted toScript(std::string_view svf, const progmode_svf2tapbus::ScriptVars& vars) {
  return converted(svf, progmode_svf2tapbus::kMessageStyle,
                   [&](auto& input, auto& output, auto& /*listing*/, auto& report) {
                     return processSVF(vars, input, output, report);
                   });
}

Converted toKsvf(std::string_view svf, const progmode_svf2ksvf::KsvfVars& vars) {
  return converted(svf, progmode_svf2ksvf::kMessageStyle,
                   [&](auto& input, auto& output, auto& listing, auto& report) {
                     return processSVF(vars, input, output, &listing, report);
                   });
}

}  // namespace tapforge::testing

#include "tests/support/in_memory.h"

#ifdef _WIN32
#include <io.h>
#include <process.h>
#else
#include <sys/mman.h>
#include <unistd.h>
#endif

#include <cstdio>
#include <cstdlib>

#include "script/script_loop.h"
#include "script/script_traits.h"
#include "script/script_writer.h"
#include "shell/io/output_file.h"
#include "tests/support/fakes.h"
#include "vector/ksvf_loop.h"
#include "vector/ksvf_traits.h"

namespace tapforge::testing {

namespace {

FilePtr newFile() {
#ifdef _WIN32
  // T and D: kept in memory where it can be, and gone with its last handle.
  const std::string ours = "tapforge" + std::to_string(_getpid()) + "-";
  return FilePtr(std::fopen(_tempnam(nullptr, ours.c_str()), "w+bTD"));
#else
  return FilePtr(fdopen(memfd_create("test", 0), "w+b"));
#endif
}

}  // namespace

MemoryFile::MemoryFile(std::string_view text) : file_(newFile()) {
  if (text.empty()) return;
  if (std::fwrite(text.data(), 1, text.size(), file_.get()) != text.size()) std::abort();
}

FilePtr MemoryFile::open() {
  std::rewind(file_.get());
  return FilePtr(fdopen(dup(fileno(file_.get())), "r+b"));
}

std::string MemoryFile::text() const {
  std::fseek(file_.get(), 0, SEEK_END);
  std::string text(static_cast<std::size_t>(std::ftell(file_.get())), '\0');
  std::rewind(file_.get());
  if (std::fread(text.data(), 1, text.size(), file_.get()) != text.size()) std::abort();
  return text;
}

const SyntaxRules& scriptRules() { return progmode_svf2tapbus::kSyntaxRules; }
const SyntaxRules& ksvfRules() { return progmode_svf2ksvf::kSyntaxRules; }

namespace {

/// Runs `convert` on an input, an output, a listing and a reporter.
template <typename Convert>
Converted converted(std::string_view svf, const MessageStyle& style, Convert convert) {
  RecordingReporter report(style);
  MemoryFile input(svf);
  MemoryFile output;
  MemoryFile listing;
  OutputFile outputFile(output.open(), "output");
  OutputFile listingFile(listing.open(), "listing");
  bool good = false;
  try {
    InputFile inputFile{"input", input.open()};
    good = convert(inputFile, outputFile, listingFile, report);
  } catch (const ProgramEnd&) {
  }
  outputFile.close();
  listingFile.close();
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

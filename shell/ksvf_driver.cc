#include "io/text.h"
#include "shell/ksvf_options.h"
#include "shell/prog_mode.h"
#include "shell/run_program.h"
#include "vector/ksvf_loop.h"
#include "vector/ksvf_traits.h"

namespace progmode_svf2ksvf {

int main_svf2ksvf(std::span<const std::string> arguments) {
  tapforge::Reporter report(kMessageStyle);
  tapforge::RunFiles files(report, tapforge::EmptyAnswer::takesNextLine);
  return tapforge::runProgram(files, [&] {
    KsvfVars vars;
    getCmdOptions(arguments, vars, files);
    displayVersion(report);
    report.startClock();
    // The options have made sure that it may be overwritten.
    files.iOverWritePrompt = false;
    files.makeChannel(files.pFC_Output, *files.sOutputName);
    files.beginOutputs();
    for (std::size_t i = 1; i < files.pFC_Input.size(); ++i) {
      report.warning(
          tapforge::concat("Input file [", files.pFC_Input[i].name, "] is not converted"),
          tapforge::Where::nowhere);
    }
    return processSVF(vars, files.pFC_Input.front(), *files.pFC_Output, files.pFC_Ascii.get(),
                      report);
  });
}

}  // namespace progmode_svf2ksvf

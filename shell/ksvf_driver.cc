#include "shell/ksvf_options.h"
#include "shell/run_program.h"
#include "vector/ksvf_loop.h"
#include "vector/ksvf_traits.h"

namespace progmode_svf2ksvf {

using tapforge::concat;

int main_svf2ksvf(std::span<char*> arguments) {
  Reporter report(kDialect);
  tapforge::Shell shell(report);
  return tapforge::runProgram(shell, [&] {
    KsvfVars vars;
    getCmdOptions(arguments, vars, shell);
    displayVersion(report);
    report.startClock();
    // The options have made sure that it may be overwritten.
    shell.iOverWritePrompt = false;
    shell.pFC_Output = tapforge::createFile(*shell.outputName, shell);
    for (std::size_t i = 1; i < shell.inputs.size(); ++i) {
      report.warning(concat("Input file [", shell.inputs[i].name, "] is not converted"),
                     tapforge::Where::nowhere);
    }
    tapforge::InputFile& input = shell.inputs.front();
    CharReader source(std::move(input.file), input.name, report);
    return processSVF(vars, source, *shell.pFC_Output, shell.pFC_Ascii.get(), report);
  });
}

}  // namespace progmode_svf2ksvf

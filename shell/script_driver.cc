#include "script/script_loop.h"
#include "script/script_traits.h"
#include "script/script_writer.h"
#include "shell/run_program.h"
#include "shell/script_options.h"

namespace progmode_svf2tapbus {

int main_svf2tapbus(std::span<char*> arguments) {
  Reporter report(kDialect);
  tapforge::Shell shell(report);
  return tapforge::runProgram(shell, [&] {
    ScriptVars vars;
    getCmdOptions(arguments, vars, shell);
    report.statusMsg(tapforge::concat("svf2tapbus Version 1.10 ", tapforge::kCopyright),
                     tapforge::StatusStyle::line);
    report.startClock();
    CommentCopier comments(vars, *shell.pFC_Output);
    tapforge::InputFile& input = shell.inputs.front();
    LineReader source(std::move(input.file), input.name, report, comments);
    return processSVF(vars, source, *shell.pFC_Output, report);
  });
}

}  // namespace progmode_svf2tapbus

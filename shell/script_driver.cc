#include "io/text.h"
#include "script/script_loop.h"
#include "script/script_traits.h"
#include "shell/prog_mode.h"
#include "shell/run_program.h"
#include "shell/script_options.h"
#include "shell/version.h"

namespace progmode_svf2tapbus {
namespace {

void displayVersion(tapforge::Reporter& report) {
  report.statusMsg(tapforge::concat(kScriptVersion, " ", kCopyright), tapforge::StatusStyle::line);
}

}  // namespace

int main_svf2tapbus(std::span<const std::string> arguments) {
  tapforge::Reporter report(kMessageStyle);
  tapforge::RunFiles files(report, tapforge::EmptyAnswer::asksAgain);
  return tapforge::runProgram(files, [&] {
    ScriptVars vars;
    getCmdOptions(arguments, vars, files);
    files.beginOutputs();
    displayVersion(report);
    report.startClock();
    return processSVF(vars, files.pFC_Input.front(), *files.pFC_Output, report);
  });
}

}  // namespace progmode_svf2tapbus

#include "script/dialect.h"
#include "script/process_svf.h"
#include "script/script_writer.h"
#include "shell/driver.h"
#include "shell/tapbus_options.h"

namespace progmode_svf2tapbus {

int main_svf2tapbus(std::span<char*> arguments) {
  Reporter report(kDialect);
  tapforge::Shell shell(report);
  return tapforge::runToEnd(shell, [&] {
    Vars vars;
    getCmdOptions(arguments, vars, shell);
    report.statusMsg(tapforge::cat("svf2tapbus Version 1.10 ", tapforge::kCopyright),
                     tapforge::StatusStyle::line);
    report.startClock();
    CommentCopier comments(vars, *shell.pFC_Output);
    tapforge::InputFile& input = shell.inputs.front();
    LineReader source(std::move(input.file), input.name, report, comments);
    return processSVF(vars, source, *shell.pFC_Output, report);
  });
}

}  // namespace progmode_svf2tapbus

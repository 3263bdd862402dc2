#ifndef TAPFORGE_SHELL_SCRIPT_OPTIONS_H
#define TAPFORGE_SHELL_SCRIPT_OPTIONS_H

#include <span>
#include <string>

#include "script/script_vars.h"
#include "shell/run_files.h"

namespace progmode_svf2tapbus {

/// Reads the command line of mode 0 into `vars` and opens its files. Returns
/// only when it is complete; else the help ends the run with status 0, a bad
/// option or file with 1.
void getCmdOptions(std::span<const std::string> arguments, ScriptVars& vars,
                   tapforge::RunFiles& files);

}  // namespace progmode_svf2tapbus

#endif  // TAPFORGE_SHELL_SCRIPT_OPTIONS_H

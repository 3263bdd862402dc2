#ifndef TAPFORGE_SHELL_SCRIPT_OPTIONS_H
#define TAPFORGE_SHELL_SCRIPT_OPTIONS_H

#include <span>

#include "script/script_vars.h"
#include "shell/options.h"

namespace progmode_svf2tapbus {

/// Reads the command line of mode 0 and opens its files. Returns only when it
/// is complete; else usage ends the run with status 0, a bad option with 1.
void getCmdOptions(std::span<char*> arguments, ScriptVars& vars, tapforge::Shell& shell);

}  // namespace progmode_svf2tapbus

#endif  // TAPFORGE_SHELL_SCRIPT_OPTIONS_H

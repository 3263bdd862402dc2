#ifndef TAPFORGE_SHELL_KSVF_OPTIONS_H
#define TAPFORGE_SHELL_KSVF_OPTIONS_H

#include <span>

#include "shell/options.h"
#include "vector/ksvf_vars.h"

namespace progmode_svf2ksvf {

/// Reads the command line of mode 1 and opens its files but for the output.
/// Returns only when it is complete and its options go together; else usage
/// ends the run with status 0, a bad option with 1.
void getCmdOptions(std::span<char*> arguments, KsvfVars& vars, tapforge::Shell& shell);

void displayVersion(tapforge::Reporter& report);

}  // namespace progmode_svf2ksvf

#endif  // TAPFORGE_SHELL_KSVF_OPTIONS_H

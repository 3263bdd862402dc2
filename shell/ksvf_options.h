#ifndef TAPFORGE_SHELL_KSVF_OPTIONS_H
#define TAPFORGE_SHELL_KSVF_OPTIONS_H

#include <span>
#include <string>

#include "shell/run_files.h"
#include "vector/ksvf_vars.h"

namespace progmode_svf2ksvf {

/// Reads the command line of mode 1 into `vars` and opens its files but for the
/// output, of which it sets the name. Returns only when it is complete and its
/// options go together; else the help ends the run with status 0, a bad option
/// or file with 1.
void getCmdOptions(std::span<const std::string> arguments, KsvfVars& vars,
                   tapforge::RunFiles& files);

void displayVersion(tapforge::Reporter& report);

}  // namespace progmode_svf2ksvf

#endif  // TAPFORGE_SHELL_KSVF_OPTIONS_H

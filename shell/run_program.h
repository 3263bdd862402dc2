#ifndef TAPFORGE_SHELL_RUN_PROGRAM_H
#define TAPFORGE_SHELL_RUN_PROGRAM_H

#include <functional>
#include <span>
#include <string_view>

#include "shell/options.h"

namespace tapforge {

/// The makers' line of the banner and of both version messages.
extern const std::string_view kCopyright;

/// Runs a mode from its options to its exit status: `conversion` returns
/// whether all went well, or ends early by ProgramEnd. Afterwards every file has
/// been flushed and closed, and whatever could not be written has been
/// reported and made the status 1.
int runProgram(Shell& shell, const std::function<bool()>& conversion);

}  // namespace tapforge

/// Mode 0: SVF to SVF or to a Tcl script. Takes the arguments after the program
/// name and returns the exit status.
namespace progmode_svf2tapbus {
int main_svf2tapbus(std::span<char*> arguments);
}

/// Mode 1: SVF to KSVF.
namespace progmode_svf2ksvf {
int main_svf2ksvf(std::span<char*> arguments);
}

#endif  // TAPFORGE_SHELL_RUN_PROGRAM_H

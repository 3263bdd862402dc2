#ifndef TAPFORGE_SHELL_SCRIPT_DRIVER_H
#define TAPFORGE_SHELL_SCRIPT_DRIVER_H

#include <span>
#include <string>

namespace progmode_svf2tapbus {

/// Mode 0: SVF to SVF or to a Tcl script. Takes the arguments after the program
/// name and returns the exit status.
int main_svf2tapbus(std::span<const std::string> arguments);

}  // namespace progmode_svf2tapbus

#endif  // TAPFORGE_SHELL_SCRIPT_DRIVER_H

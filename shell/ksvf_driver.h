#ifndef TAPFORGE_SHELL_KSVF_DRIVER_H
#define TAPFORGE_SHELL_KSVF_DRIVER_H

#include <span>
#include <string>

namespace progmode_svf2ksvf {

/// Mode 1: SVF to KSVF. Takes the arguments after the program name and returns
/// the exit status.
int main_svf2ksvf(std::span<const std::string> arguments);

}  // namespace progmode_svf2ksvf

#endif  // TAPFORGE_SHELL_KSVF_DRIVER_H

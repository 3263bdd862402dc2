#ifndef TAPFORGE_SHELL_PROG_MODE_H
#define TAPFORGE_SHELL_PROG_MODE_H

#include <span>
#include <string>

/// What the command line asks the program to be.
enum class ProgMode { unset = -1, svf2tapbus = 0, svf2ksvf = 1 };

/// The mode that the last "-tapbus" or "-ksvf" names; a repeated one is
/// remarked on. "-check_locale" prints its report on the way. The switches stay
/// in the arguments, where the mode's own options see them again.
ProgMode getProgMode(std::span<const std::string> arguments);

/// Prints on standard output how numbers, dates and currency look in some
/// locales (-check_locale). The locale is afterwards as it was.
void checkSysLocale();

// The modes themselves. They take the arguments after the program name and return
// the exit status.

namespace tapforge::progmode_svf2tapbus {
/// Mode 0: SVF to SVF or to a Tcl script.
int main_svf2tapbus(std::span<const std::string> arguments);
}  // namespace tapforge::progmode_svf2tapbus

namespace tapforge::progmode_svf2ksvf {
/// Mode 1: SVF to KSVF.
int main_svf2ksvf(std::span<const std::string> arguments);
}  // namespace tapforge::progmode_svf2ksvf

#endif  // TAPFORGE_SHELL_PROG_MODE_H

#ifndef TAPFORGE_SHELL_RUN_PROGRAM_H
#define TAPFORGE_SHELL_RUN_PROGRAM_H

#include <functional>

#include "shell/run_files.h"

namespace tapforge {

/// Runs a mode to its exit status. `conversion` reads the options and converts;
/// it returns whether all went well, or ends early by ProgramEnd, WriteFailed
/// or std::bad_alloc. Afterwards every file has been flushed and closed, and
/// whatever could not be written has been reported and made the status 1.
int runProgram(RunFiles& files, const std::function<bool()>& conversion);

}  // namespace tapforge

#endif  // TAPFORGE_SHELL_RUN_PROGRAM_H

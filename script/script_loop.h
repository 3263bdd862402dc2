#ifndef TAPFORGE_SCRIPT_SCRIPT_LOOP_H
#define TAPFORGE_SCRIPT_SCRIPT_LOOP_H

#include "io/files.h"
#include "io/output_file.h"
#include "io/reporter.h"
#include "script/script_vars.h"

namespace progmode_svf2tapbus {

/// The statement loop of mode 0: reads the input, whose handle it takes over, to
/// its end and writes each statement as soon as it has been read. False when a
/// keyword was unknown; its statement is then missing in the output.
bool processSVF(const ScriptVars& vars, tapforge::InputFile& input, tapforge::OutputFile& output,
                tapforge::Reporter& report);

}  // namespace progmode_svf2tapbus

#endif  // TAPFORGE_SCRIPT_SCRIPT_LOOP_H

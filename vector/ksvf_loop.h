#ifndef TAPFORGE_VECTOR_KSVF_LOOP_H
#define TAPFORGE_VECTOR_KSVF_LOOP_H

#include "io/files.h"
#include "io/output_file.h"
#include "io/reporter.h"
#include "vector/ksvf_vars.h"

namespace progmode_svf2ksvf {

/// The statement loop of mode 1: reads the input, whose handle it takes over, to
/// its end and writes the whole KSVF file, and its listing unless that is null.
/// False when a keyword was unknown; its statement is then missing in the output.
bool processSVF(const KsvfVars& vars, tapforge::InputFile& input, tapforge::OutputFile& output,
                tapforge::OutputFile* listing, tapforge::Reporter& report);

}  // namespace progmode_svf2ksvf

#endif  // TAPFORGE_VECTOR_KSVF_LOOP_H

#ifndef TAPFORGE_VECTOR_PROCESS_SVF_H
#define TAPFORGE_VECTOR_PROCESS_SVF_H

#include "shell/output_file.h"
#include "shell/reporter.h"
#include "svf/char_reader.h"
#include "vector/vars.h"

namespace progmode_svf2ksvf {

/// The statement loop of mode 1: reads the source to its end and writes the
/// whole KSVF file, and its listing unless that is null. False when a keyword
/// was unknown; its statement is then missing in the output.
bool processSVF(const Vars& vars, CharReader& source, tapforge::OutputFile& output,
                tapforge::OutputFile* listing, Reporter& report);

}  // namespace progmode_svf2ksvf

#endif  // TAPFORGE_VECTOR_PROCESS_SVF_H

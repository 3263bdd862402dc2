#ifndef TAPFORGE_SVF_STATE_STATEMENTS_H
#define TAPFORGE_SVF_STATE_STATEMENTS_H

#include "svf/run.h"

namespace tapforge {

/// The register that ENDIR or ENDDR is about.
enum class ScanRegister { instruction, data };

/// Reads the rest of an ENDIR or ENDDR statement; stores and returns its state.
TapState readEndState(ScanRegister which, Run& run);

/// The current token as a state of a STATE path.
TapState readPathState(Run& run);

/// A STATE path must end in a stable state, else it is fatal.
void checkFinalState(TapState state, Run& run);

}  // namespace tapforge

#endif  // TAPFORGE_SVF_STATE_STATEMENTS_H

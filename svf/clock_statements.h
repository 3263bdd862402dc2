#ifndef TAPFORGE_SVF_CLOCK_STATEMENTS_H
#define TAPFORGE_SVF_CLOCK_STATEMENTS_H

#include "svf/run.h"

namespace tapforge {

/// Reads the rest of a FREQUENCY statement and stores the frequency in Hz; a
/// statement without one, or with one that is not above 0, stores -1.
void readFrequency(Run& run);

/// Reads the mode of a TRST statement; it is the current token, as written,
/// until finishTrst() goes on.
void readTrstMode(Run& run);

/// Checks and stores the TRST mode and reads up to the ";".
void finishTrst(Run& run);

}  // namespace tapforge

#endif  // TAPFORGE_SVF_CLOCK_STATEMENTS_H

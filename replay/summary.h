#ifndef TAPFORGE_REPLAY_SUMMARY_H_
#define TAPFORGE_REPLAY_SUMMARY_H_

#include "replay/operation.h"
#include "replay/output.h"

namespace tapforge_replay {

/// Writes what a file asks of a player: how many scans and how long, clocks, waits, the
/// time they take, and which extras of SVF it uses. The time is that at `tckHertz`, or
/// at the FREQUENCY in force where that is 0.
void writeSummary(Reader& reader, double tckHertz, Output& output);

}  // namespace tapforge_replay

#endif  // TAPFORGE_REPLAY_SUMMARY_H_

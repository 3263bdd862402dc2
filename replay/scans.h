#ifndef TAPFORGE_REPLAY_SCANS_H_
#define TAPFORGE_REPLAY_SCANS_H_

#include "replay/findings.h"
#include "replay/operation.h"

namespace tapforge_replay {

/// Compares the bits of two scans of the same number, register and length.
void compareBits(const Operation& from, const Operation& to, Findings& findings);

}  // namespace tapforge_replay

#endif  // TAPFORGE_REPLAY_SCANS_H_

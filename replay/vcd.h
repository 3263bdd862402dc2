#ifndef TAPFORGE_REPLAY_VCD_H_
#define TAPFORGE_REPLAY_VCD_H_

#include "replay/operation.h"
#include "replay/output.h"

namespace tapforge_replay {

/// Writes the pins as a value change dump for a waveform viewer: TCK, TMS, TDI, the
/// expected TDO (x where it is not compared), whether it is compared, the TAP
/// state as KSVF numbers it, and the number of the scan. A TCK lasts what the FREQUENCY in force
/// says, 1 us before the first one. Of a long wait only the first clocks are drawn; then TCK is z
/// and the time jumps to the end of the wait.
void writeVcd(Reader& reader, Output& output);

}  // namespace tapforge_replay

#endif  // TAPFORGE_REPLAY_VCD_H_

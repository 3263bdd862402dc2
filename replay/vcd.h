#ifndef TAPFORGE_REPLAY_VCD_H_
#define TAPFORGE_REPLAY_VCD_H_

#include "replay/operation.h"
#include "replay/output.h"

namespace tapforge_replay {

/// Writes the pins as a value change dump for a waveform viewer, one bit a signal: TCK,
/// TMS, TDI, the expected TDO (x where it is not compared), whether it is compared, and TRST
/// (0 while it is on, z while nobody drives it). Five clocks with TMS 1 come first. `list` gets a
/// line for each scan, with its time. A TCK lasts what the FREQUENCY in force says, before the
/// first one what `tckHertz` says, and 1 us where that is 0. Of a long wait only the first clocks
/// are drawn; then TCK is z and the time jumps to the end of the wait.
void writeVcd(Reader& reader, double tckHertz, Output& pins, Output& list);

}  // namespace tapforge_replay

#endif  // TAPFORGE_REPLAY_VCD_H_

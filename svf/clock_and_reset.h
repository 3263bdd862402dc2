#ifndef TAPFORGE_SVF_CLOCK_AND_RESET_H
#define TAPFORGE_SVF_CLOCK_AND_RESET_H

#include <string>

#include "svf/file_channel.h"

namespace tapforge {

/// Reads the rest of a FREQUENCY statement: the frequency in Hz, or -1 when it
/// has none or one that is not above 0, which is warned about.
float readFrequency(FileChannel& channel);

enum class TrstMode { none, on, off, z, absent };

struct Trst {
  TrstMode mode;          // the one in force from now on
  std::string asWritten;  // the mode's word
};

/// Reads the rest of a TRST statement. Warns of what the rules for ABSENT do not
/// allow after the mode in force and, with `scanSeen`, after a scan or a RUNTEST.
Trst readTrst(TrstMode inForce, bool scanSeen, FileChannel& channel);

}  // namespace tapforge

#endif  // TAPFORGE_SVF_CLOCK_AND_RESET_H

#ifndef TAPFORGE_SVF_CLOCK_AND_RESET_H
#define TAPFORGE_SVF_CLOCK_AND_RESET_H

#include <string>

#include "svf/file_channel.h"

namespace tapforge {

struct Frequency {
  float hertz;                 // -1 when it is not given, or not above 0
  std::string_view asWritten;  // its number under -exact; good until the next one is read
  std::string unit;            // as written
};

/// Reads the rest of a FREQUENCY statement. A frequency that is not above 0 is warned
/// about, and fatal under -exact.
Frequency readFrequency(FileChannel& channel);

enum class TrstMode { none, on, off, z, absent };

struct Trst {
  TrstMode mode;          // the one in force from now on
  std::string asWritten;  // the mode's word
};

/// Reads the rest of a TRST statement. An unknown mode is warned about, and fatal under
/// -exact. Warns of what the rules for ABSENT do not
/// allow after the mode in force and, with `scanSeen`, after a scan or a RUNTEST.
Trst readTrst(TrstMode inForce, bool scanSeen, FileChannel& channel);

}  // namespace tapforge

#endif  // TAPFORGE_SVF_CLOCK_AND_RESET_H

#ifndef TAPFORGE_SVF_PIO_H
#define TAPFORGE_SVF_PIO_H

#include "svf/run.h"

namespace tapforge {

/// Reads the rest of a PIOMAP statement; its pins replace those of the last.
void readPioMap(Run& run);

/// Reads the rest of a PIO statement and checks each pin's value against its
/// direction. Neither output form has parallel I/O, so the values end here.
void readPio(Run& run);

}  // namespace tapforge

#endif  // TAPFORGE_SVF_PIO_H

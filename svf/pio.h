#ifndef TAPFORGE_SVF_PIO_H
#define TAPFORGE_SVF_PIO_H

#include <vector>

#include "svf/file_channel.h"

namespace tapforge {

/// How a pin of the parallel port is used, in PIOMAP's words.
enum class PinDirection { in, out, inout };

/// The pins in the order of the PIO characters.
using PioMap = std::vector<PinDirection>;

/// Reads the rest of a PIOMAP statement.
PioMap readPioMap(FileChannel& channel);

/// Reads the rest of a PIO statement and checks each pin's value against its
/// direction. No output form has parallel I/O, so the values end here.
void readPio(const PioMap& map, FileChannel& channel);

}  // namespace tapforge

#endif  // TAPFORGE_SVF_PIO_H

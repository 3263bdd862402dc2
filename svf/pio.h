#ifndef TAPFORGE_SVF_PIO_H
#define TAPFORGE_SVF_PIO_H

#include <vector>

#include "svf/file_channel.h"

namespace tapforge {

/// How a pin of the parallel port is used, in PIOMAP's words.
enum class PinDirection { in, out, inout };

/// The pins in the order of the PIO characters.
using PioMap = std::vector<PinDirection>;

/// Reads the rest of a PIOMAP statement. A name given twice and anything but a
/// direction and a name are fatal. `asWritten` gets what stands in the parentheses.
PioMap readPioMap(FileChannel& channel, std::string& asWritten);

/// Reads the rest of a PIO statement and checks it: an unknown value, one that does not
/// fit its pin's direction and a value too many are fatal; missing ones are accepted.
/// Without a PIOMAP it warns and skips the values; under -exact that is fatal.
/// `asWritten` gets what stands in the parentheses.
void readPio(const PioMap& map, FileChannel& channel, std::string& asWritten);

}  // namespace tapforge

#endif  // TAPFORGE_SVF_PIO_H

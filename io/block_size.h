#ifndef TAPFORGE_IO_BLOCK_SIZE_H
#define TAPFORGE_IO_BLOCK_SIZE_H

#include <cstddef>

namespace tapforge {

/// How many bytes of a file are read or written at a time, at least 1. A file
/// keeps the value that it was opened with. Tests make it small, so that
/// everything is seen at the edge between two blocks.
extern std::size_t gBlockSize;

}  // namespace tapforge

#endif  // TAPFORGE_IO_BLOCK_SIZE_H

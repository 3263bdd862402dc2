// Makes the program tapforge_tiny_blocks: it reads and writes a few bytes at a time, three or
// as many as the environment variable TAPFORGE_BLOCK_SIZE says.

#include <algorithm>
#include <cstdlib>

#include "io/files.h"

namespace {

std::size_t tinySize() {
  const char* const wanted = std::getenv("TAPFORGE_BLOCK_SIZE");
  return wanted == nullptr ? 3 : std::max(1UL, std::strtoul(wanted, nullptr, 10));
}

// Before main() opens the first file.
[[maybe_unused]] const std::size_t kTinySize = tapforge::gBlockSize = tinySize();

}  // namespace

#include "io/files.h"

namespace tapforge {

std::size_t gBlockSize = std::size_t{128} * 1024;

}  // namespace tapforge

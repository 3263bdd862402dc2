#ifndef TAPFORGE_REPLAY_LIST_H_
#define TAPFORGE_REPLAY_LIST_H_

#include <cstdint>

#include "replay/operation.h"
#include "replay/output.h"

namespace tapforge_replay {

/// Writes a line for each operation, cut after `width` characters.
void listOperations(Reader& reader, std::size_t width, Output& output);

/// Writes where scan `number` stands, what it shifts, and the text of its
/// statement, which is read from `path` again. Throws Fault when there is none.
void showScan(Reader& reader, std::uint64_t number, const std::string& path, Output& output);

}  // namespace tapforge_replay

#endif  // TAPFORGE_REPLAY_LIST_H_

#ifndef TAPFORGE_REPLAY_LIST_H_
#define TAPFORGE_REPLAY_LIST_H_

#include <cstdint>

#include "replay/input.h"
#include "replay/operation.h"
#include "replay/output.h"

namespace tapforge_replay {

/// A line of a list, of each value `mostDigits` digits. KSVF does not keep the TDO of a
/// scan that compares no bit, so it is not shown; the operation loses it here.
std::string listed(Operation& operation, std::size_t mostDigits);

/// Writes a line for each operation, cut after `width` characters.
void listOperations(Reader& reader, std::size_t width, Output& output);

/// Writes where scan `number` of what `reader` reads from `input` stands, what it
/// shifts, and the text of its statement. Throws Fault when there is none.
void showScan(Reader& reader, std::uint64_t number, const Input& input, Output& output);

}  // namespace tapforge_replay

#endif  // TAPFORGE_REPLAY_LIST_H_

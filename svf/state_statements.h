#ifndef TAPFORGE_SVF_STATE_STATEMENTS_H
#define TAPFORGE_SVF_STATE_STATEMENTS_H

#include <functional>
#include <string_view>

#include "svf/file_channel.h"
#include "svf/tap_state.h"

namespace tapforge {

/// Which states are accepted: stable ones, or all, as in a STATE path.
enum class StateUse { stable, path };

/// The state that the current token names; fatal "[name]: message" when the
/// use does not accept it.
TapState checkTapState(StateUse use, std::string_view message, FileChannel& channel);

/// Reads the rest of an ENDIR or ENDDR statement.
TapState readEndState(FileChannel& channel);

/// One state of a STATE path.
struct PathStep {
  TapState from;
  TapState state;
  bool oneClock;               // else a stable state that is reached by its usual way
  std::string_view asWritten;  // good until the next step is read
};

/// Reads the rest of a STATE statement, from the state before it; from `unknown`
/// every state is one clock away. Each step is given to `take` before the next one
/// is read. Returns the last state, which must be stable.
TapState readStatePath(TapState start, FileChannel& channel,
                       const std::function<void(const PathStep&)>& take);

}  // namespace tapforge

#endif  // TAPFORGE_SVF_STATE_STATEMENTS_H

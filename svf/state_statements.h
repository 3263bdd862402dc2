#ifndef TAPFORGE_SVF_STATE_STATEMENTS_H
#define TAPFORGE_SVF_STATE_STATEMENTS_H

#include <optional>
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
  TapState state;
  bool oneClock;               // else a stable state that is reached by its usual way
  std::string_view asWritten;  // good until the next step is read
};

/// Reads the rest of a STATE statement, a state at a time, so that each can be
/// written before the next one is read.
class StatePathReader {
 public:
  /// `start` is the state before the statement. From `unknown` every state is one
  /// clock away.
  StatePathReader(TapState start, FileChannel& channel) : previous_(start), channel_(channel) {}

  /// The next state; nothing after the ";", where the path must have ended in a
  /// stable state.
  std::optional<PathStep> next();

 private:
  void checkFinalState();

  TapState previous_;
  bool first_ = true;
  FileChannel& channel_;
};

}  // namespace tapforge

#endif  // TAPFORGE_SVF_STATE_STATEMENTS_H

#ifndef TAPFORGE_VECTOR_KSVF_MOVES_H
#define TAPFORGE_VECTOR_KSVF_MOVES_H

#include <cstdint>

#include "svf/tap_state.h"
#include "vector/command_writer.h"
#include "vector/ksvf_mode.h"

namespace tapforge::progmode_svf2ksvf {

/// Writes state moves, end states and waits as KSVF commands.
class KsvfMoves {
 public:
  KsvfMoves(const KsvfVars& vars, CommandWriter& commands) : vars_(vars), commands_(commands) {}

  /// A step of one clock to a state; only those are written that the options ask
  /// for.
  void addTapTransition(TapState state);

  /// The usual way from one stable state to another that one clock does not reach.
  void doStableState(TapState from, TapState to);

  /// A KENDIR or KENDDR, with -extensions.
  void endState(ScanRegister which, TapState state);

  /// A KWAIT: `count` TCKs in one stable state, then a move to another.
  void wait(TapState waitState, TapState endState, std::int64_t count);

 private:
  const KsvfVars& vars_;
  CommandWriter& commands_;
};

}  // namespace tapforge::progmode_svf2ksvf

#endif  // TAPFORGE_VECTOR_KSVF_MOVES_H

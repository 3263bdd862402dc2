#ifndef TAPFORGE_REPLAY_STEPS_H_
#define TAPFORGE_REPLAY_STEPS_H_

#include <cstddef>
#include <cstdint>

#include "replay/operation.h"

namespace tapforge_replay {

/// A file as single steps in their order, as a comparison needs them. The kind of a step
/// is that of its operation, but for two: kMove is a state that was entered, by whatever
/// operation, and a TCK that stays in a stable state is a kWait.
class Steps {
 public:
  explicit Steps(Reader& file) : reader{file} {}

  void next();
  void skipToEnd() {
    while (kind != Operation::Kind::kEnd) next();
  }
  bool isSetting() const;  ///< TRST, FREQUENCY or PIO
  bool isGapOver() const { return kind == Operation::Kind::kScan || kind == Operation::Kind::kEnd; }

  Reader& reader;
  Operation operation;  ///< that the step is a part of
  Operation::Kind kind = Operation::Kind::kMove;
  TapState state = TapState::kReset;  ///< entered last
  Wait wait;
  bool isImplied = false;   ///< a reset that the file does not say
  bool isReading = false;   ///< the reader threw
  std::uint64_t scans = 0;  ///< up to this step
  std::uint64_t waits = 0;  ///< the same, of those that the file says

 private:
  bool isOwnStep();
  bool enter(TapState next);

  bool isFresh_ = true;     // no state was entered
  std::size_t at_ = 0;      // of the steps of the operation
  std::size_t before_ = 0;  // of these enter states before its own one,
  std::size_t count_ = 0;   // and so many there are
};

}  // namespace tapforge_replay

#endif  // TAPFORGE_REPLAY_STEPS_H_

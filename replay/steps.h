#ifndef TAPFORGE_REPLAY_STEPS_H_
#define TAPFORGE_REPLAY_STEPS_H_

#include <cstddef>
#include <cstdint>

#include "replay/operation.h"

namespace tapforge_replay {

/// A file as single steps in their order, as a comparison needs them: each state
/// that is entered, each wait, each setting, each scan.
class Steps {
 public:
  enum class Kind : std::uint8_t {
    kState,    ///< `state` was entered
    kWait,     ///< `wait`; also TCKs for which a move stays where it is
    kSetting,  ///< TRST, FREQUENCY or PIO, as `operation` says
    kScan,     ///< `operation`, between the states before and after it
    kEnd,      ///< of the file; no step follows
  };

  explicit Steps(Reader& file) : reader{file} {}

  void next();
  void skipToEnd() {
    while (kind != Kind::kEnd) next();
  }
  bool isGapOver() const { return kind == Kind::kScan || kind == Kind::kEnd; }

  Reader& reader;
  Operation operation;  ///< that the step is a part of
  Kind kind = Kind::kState;
  TapState state = TapState::kReset;  ///< entered last
  Wait wait;
  bool isImplied = false;   ///< a reset that the file does not say
  bool isReading = false;   ///< the reader threw
  std::uint64_t scans = 0;  ///< up to this step
  std::uint64_t waits = 0;  ///< the same, of those that the file says

 private:
  void read();
  bool isOwnStep();
  bool enter(TapState next);

  bool isFresh_ = true;     // no state was entered
  std::size_t at_ = 0;      // of the steps of the operation
  std::size_t before_ = 0;  // of these enter states before its own one,
  std::size_t count_ = 0;   // and so many there are
};

}  // namespace tapforge_replay

#endif  // TAPFORGE_REPLAY_STEPS_H_

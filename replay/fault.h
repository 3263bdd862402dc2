#ifndef TAPFORGE_REPLAY_FAULT_H_
#define TAPFORGE_REPLAY_FAULT_H_

#include <stdexcept>

namespace tapforge_replay {

/// Why a file cannot be read, played or written. The text names file and place
/// and is shown to the user as it stands.
struct Fault : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace tapforge_replay

#endif  // TAPFORGE_REPLAY_FAULT_H_

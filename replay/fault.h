#ifndef TAPFORGE_REPLAY_FAULT_H_
#define TAPFORGE_REPLAY_FAULT_H_

#include <stdexcept>
#include <string>

namespace tapforge_replay {

/// Why a file cannot be read, played or written. The text names file and place
/// and is shown to the user as it stands.
struct Fault : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// A file that nobody plays: Tcl that a Tcl shell does not run as meant, or an unmerged
/// copy. `where` is the place and what is wrong there, "line 12: ...", without the name of the
/// file. A comparison makes a finding of it when it is the converted file that says so.
struct NotPlayable : Fault {
  NotPlayable(const std::string& path, const std::string& what)
      : Fault(path + ": " + what), where(what) {}
  std::string where;
};

}  // namespace tapforge_replay

#endif  // TAPFORGE_REPLAY_FAULT_H_

#ifndef TAPFORGE_TESTS_REPLAY_PLAYERS_H_
#define TAPFORGE_TESTS_REPLAY_PLAYERS_H_

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "tests/replay/tap_chain.h"

/// Each player does to a chain what a text or file says and returns the record.
/// All throw std::exception on input that is not of their form.
namespace tapforge::replay {

/// Ways to read SVF that differ from playing it as it stands.
struct SvfReading {
  /// Header and trailer as one joined scan takes them: their SMASK, TDO and MASK
  /// only where the data has them too (`care` and `mask` stay empty where it has
  /// not), TDO compared under a MASK of their own.
  bool joined = false;
  double waitBehindScans = -1;  ///< clocks of a RUNTEST behind every scan; below 0: none
};

Trace playSvf(std::string_view text, const SvfReading& reading = {});

/// Plays a tapbus Tcl script. Header and trailer properties do nothing, as the
/// scans are joined already; each "-tck" is a wait of its own.
Trace playTcl(std::string_view text);

/// What a KSVF player does with the count of the last KRUNTEST.
enum class CountedScans {
  kAll,       ///< waits after every scan
  kDataOnly,  ///< waits after data scans, as players of version 2 do
};

/// Plays the bytes of a KSVF file. Each KSTATE is a step, and an
/// end state other than idle is the pause state of its register.
Trace playKsvf(std::string_view bytes, CountedScans counted = CountedScans::kAll);

/// The bytes that an ASCII listing without comments stands for.
std::string bytesFromListing(const std::string& listing);

/// The copy that option -c writes keeps its scan values in comment lines; this
/// turns those lines into plain SVF. Other comments stay.
std::string uncommentValues(std::string text);

/// The text without what stands between a mark and the end of its line.
std::string withoutRemarks(std::string_view text, std::initializer_list<std::string_view> marks);

/// Text cut at white space, lower case. "(...)" is a word of its own, without
/// its white space and its closing mark.
std::vector<std::string> splitWords(std::string_view text);

}  // namespace tapforge::replay

#endif  // TAPFORGE_TESTS_REPLAY_PLAYERS_H_

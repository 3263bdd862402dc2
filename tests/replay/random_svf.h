#ifndef TAPFORGE_TESTS_REPLAY_RANDOM_SVF_H_
#define TAPFORGE_TESTS_REPLAY_RANDOM_SVF_H_

#include <cstddef>
#include <string>

namespace tapforge::replay {

/// What a generated file may hold.
struct SvfLimits {
  bool maximum = true;               ///< RUNTEST ... MAXIMUM
  bool maximumAfterBareTime = true;  ///< ... also where no clock count stands before
  bool systemClock = true;           ///< RUNTEST counts in SCK
  bool pathsFromAnyState = true;     ///< STATE may begin beside the present state
  bool anyLineSharing = true;        ///< also behind header, trailer, FREQUENCY and TRST
};

/// A valid SVF file, the same one for the same arguments. Counts stay within
/// 24 bits, times within a microsecond and two seconds, so that single
/// precision numbers hold them.
std::string randomSvf(unsigned seed, std::size_t statements, const SvfLimits& limits);

}  // namespace tapforge::replay

#endif  // TAPFORGE_TESTS_REPLAY_RANDOM_SVF_H_

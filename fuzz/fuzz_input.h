#ifndef TAPFORGE_FUZZ_FUZZ_INPUT_H
#define TAPFORGE_FUZZ_FUZZ_INPUT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace tapforge::fuzz {

/// Whether a number has more digits than these. Such numbers ask for scans and waits of any
/// size, which is right but keeps the fuzzer waiting.
inline bool hasLongNumber(std::string_view text, std::size_t mostDigits) {
  std::size_t digits = 0;
  // In hex values digits are no number, but letters or blanks break them up.
  return std::any_of(text.begin(), text.end(), [&](char c) {
    digits = c >= '0' && c <= '9' ? digits + 1 : 0;
    return digits > mostDigits;
  });
}

/// One file of a fuzz input: its first two bytes choose options, the rest is SVF text.
struct InputFile {
  unsigned options = 0;
  std::string_view svf;
};

/// Converts each file of a fuzz input. The byte 0x1E stands between them, so that one input
/// can meet many messages that each end a conversion.
/// Files with long numbers are left out.
template <class Convert>
void forEachFile(const std::uint8_t* data, std::size_t size, Convert convert) {
  constexpr std::size_t kMostDigits = 5;
  constexpr char kSeparator = 0x1E;
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  while (rest.size() >= 2) {
    const auto byte = [&rest](std::size_t i) { return static_cast<unsigned char>(rest[i]); };
    InputFile file{byte(0) | static_cast<unsigned>(byte(1)) << 8, rest.substr(2)};
    file.svf = file.svf.substr(0, file.svf.find(kSeparator));
    rest.remove_prefix(std::min(file.svf.size() + 3, rest.size()));
    if (!hasLongNumber(file.svf, kMostDigits)) convert(file);
  }
}

/// Ends the fuzzer with a message when a property does not hold.
inline void require(bool holds, const char* property) {
  if (holds) return;
  std::fprintf(stderr, "property broken: %s\n", property);
  std::abort();
}

}  // namespace tapforge::fuzz

#endif  // TAPFORGE_FUZZ_FUZZ_INPUT_H

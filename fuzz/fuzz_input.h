#ifndef TAPFORGE_FUZZ_FUZZ_INPUT_H
#define TAPFORGE_FUZZ_FUZZ_INPUT_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace tapforge::fuzz {

/// A fuzz input: the first two bytes choose options, the rest is SVF text.
struct Input {
  unsigned options = 0;
  std::string_view svf;
  bool usable = false;
};

/// Inputs with long numbers are left out: they ask for scans and waits of any
/// size, which is right but keeps the fuzzer waiting.
inline Input parseInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kMostDigits = 5;
  Input input;
  if (size < 2) return input;
  input.options = static_cast<unsigned>(data[0]) | static_cast<unsigned>(data[1]) << 8;
  input.svf = {reinterpret_cast<const char*>(data) + 2, size - 2};
  std::size_t digits = 0;
  for (const char c : input.svf) {
    // In hex values digits are no number, but letters or blanks break them up.
    digits = c >= '0' && c <= '9' ? digits + 1 : 0;
    if (digits > kMostDigits) return input;
  }
  input.usable = true;
  return input;
}

/// Ends the fuzzer with a message when a property does not hold.
inline void require(bool holds, const char* property) {
  if (holds) return;
  std::fprintf(stderr, "property broken: %s\n", property);
  std::abort();
}

}  // namespace tapforge::fuzz

#endif  // TAPFORGE_FUZZ_FUZZ_INPUT_H

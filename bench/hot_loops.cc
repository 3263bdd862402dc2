// The loops that every character of a large file passes through. The one that
// decodes hex digits is compared with its scalar version before it is timed.

#include <benchmark/benchmark.h>

#include <array>
#include <cstdlib>
#include <string>
#include <vector>

#include "scan/hex_digits.h"
#include "tests/support/in_memory.h"

namespace {

constexpr std::size_t kDigits = 1 << 20;

std::string hexText(std::size_t digits) {
  std::string text(digits + 64, ' ');
  unsigned state = 1;
  for (std::size_t i = 0; i < digits; ++i) {
    state = state * 1103515245 + 12345;
    text[i] = "0123456789ABCDEF"[state >> 28];
  }
  return text;
}

using Decode = tapforge::ShortHex(const unsigned char*);

void hexDigitsIn(benchmark::State& state, Decode* decode) {
  const std::string text = hexText(kDigits);
  const auto* begin = reinterpret_cast<const unsigned char*>(text.data());
  for (std::size_t at = 0; at < kDigits; ++at) {
    const tapforge::ShortHex found = decode(begin + at);
    const tapforge::ShortHex expected = tapforge::scalar::decodeShortHex(begin + at);
    if (found.digits != expected.digits || found.value != expected.value) std::abort();
  }
  for (auto _ : state) {
    for (std::size_t at = 0; at < kDigits; at += 16) {
      benchmark::DoNotOptimize(decode(begin + at));
    }
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(kDigits));
}
BENCHMARK_CAPTURE(hexDigitsIn, fast, tapforge::decodeShortHex);
BENCHMARK_CAPTURE(hexDigitsIn, scalar, tapforge::scalar::decodeShortHex);

using Encode = void(std::uint64_t, tapforge::HexCase, char*);

void hexDigitsOut(benchmark::State& state, Encode* encode) {
  std::array<char, 16> text{};
  std::uint64_t bits = 0x0123456789abcdef;
  for (auto _ : state) {
    encode(bits++, tapforge::HexCase::lower, text.data());
    benchmark::DoNotOptimize(text);
  }
  state.SetBytesProcessed(state.iterations() * 16);
}
BENCHMARK_CAPTURE(hexDigitsOut, fast, tapforge::encodeHex16);
BENCHMARK_CAPTURE(hexDigitsOut, scalar, tapforge::scalar::encodeHex16);

// Whole conversions in memory: `svf` in, its output of either mode out.
template <typename Convert>
void conversion(benchmark::State& state, const std::string& svf, Convert convert) {
  for (auto _ : state) {
    if (!convert(svf).good) std::abort();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(svf.size()));
}

std::string longScan() {
  return "HDR 3 TDI (5); SDR " + std::to_string(4 * kDigits) + " TDI (" + hexText(kDigits) + ");";
}

std::string statements() {
  std::string text = "HIR 3 TDI (7); HDR 2 TDI (3);\n";
  for (int i = 0; i < 10000; ++i) {
    text +=
        "SIR 8 TDI (5a);\nSDR 32 TDI (01234567) TDO (89abcdef) MASK (ffff0000);\n"
        "RUNTEST 100 TCK;\n";
  }
  return text;
}

void composedDigitsOut(benchmark::State& state) {
  conversion(state, longScan(), [](const auto& svf) { return tapforge::testing::toScript(svf); });
}
BENCHMARK(composedDigitsOut);

void vectorBytesOut(benchmark::State& state) {
  conversion(state, longScan(), [](const auto& svf) { return tapforge::testing::toKsvf(svf); });
}
BENCHMARK(vectorBytesOut);

void statementsToSvf(benchmark::State& state) {
  conversion(state, statements(), [](const auto& svf) { return tapforge::testing::toScript(svf); });
}
BENCHMARK(statementsToSvf);

void statementsToKsvf(benchmark::State& state) {
  conversion(state, statements(), [](const auto& svf) { return tapforge::testing::toKsvf(svf); });
}
BENCHMARK(statementsToKsvf);

}  // namespace

BENCHMARK_MAIN();

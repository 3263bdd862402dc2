// tapforge-replay: no file may crash it or keep it busy without end, and each file does
// the same as itself. The first byte of an input chooses options; what follows a byte
// 0x1E is a second file, which the first one is compared with. The byte 0x1C ends an input
// and begins another one. TMPDIR=/dev/shm makes it fast.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>

#include "fuzz/fuzz_input.h"
#include "replay/compare.h"
#include "replay/fault.h"
#include "replay/list.h"
#include "replay/summary.h"
#include "replay/text_reader.h"
#include "replay/vcd.h"

using namespace tapforge_replay;

struct TemporaryFile {
  explicit TemporaryFile(std::string_view text) { std::ofstream(path, std::ios::binary) << text; }
  ~TemporaryFile() { std::filesystem::remove(path); }
  const std::string path = (std::filesystem::temp_directory_path() /
                            ("replay_fuzz" + std::to_string(std::random_device()())))
                               .string();
};

static int testInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  constexpr std::size_t kMostDigits = 4;  // each bit of a scan becomes many characters
  if (text.empty() || tapforge::fuzz::hasLongNumber(text, kMostDigits)) return 0;
  const bool dataWaits = data[0] % 2 != 0;
  const std::size_t end = text.find('\x1E', 1);
  const TemporaryFile first(text.substr(1, end - 1));
  const TemporaryFile second(text.substr(end < size ? end + 1 : 1));
  const TemporaryFile written("");
  Output output(written.path);

  const auto play = [&](auto use) {
    try {
      Input input(first.path);
      use(*makeReader(input, dataWaits), input);
    } catch (const Fault&) {
    }
  };
  play([&](Reader& reader, Input&) { listOperations(reader, 80, output); });
  play([&](Reader& reader, Input&) { writeVcd(reader, data[0] >> 1, output, output); });
  play([&](Reader& reader, Input&) { writeSummary(reader, data[0] >> 1, output); });
  play([&](Reader& reader, Input& input) { showScan(reader, 1, input, output); });
  play([&](Reader& reader, Input&) {
    Input input(second.path);
    const auto other = makeReader(input, dataWaits);
    Comparison comparison(reader, *other, data[0] >> 1);
    comparison.run();
    output << comparison.report();
    for (std::size_t i = 0; end >= size && i < kDifferenceCount; ++i) {
      const auto kind = static_cast<Difference>(i);
      const bool same = comparison.findings()[kind].count == 0;
      tapforge::fuzz::require(same || kind == Difference::kNoScans, "a file is the same");
    }
  });
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::uint8_t* const dataEnd = data + size;
  while (data < dataEnd) {
    const std::uint8_t* const end = std::find(data + 1, dataEnd, 0x1C);
    testInput(data, static_cast<std::size_t>(end - data));
    data = end + (end < dataEnd ? 1 : 0);
  }
  return 0;
}

// tapforge-replay: shows what a file does to a TAP, or compares a source with what
// was made of it.

#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <exception>
#include <new>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "replay/compare.h"
#include "replay/fault.h"
#include "replay/list.h"
#include "replay/system.h"
#include "replay/text_reader.h"
#include "replay/vcd.h"

namespace tapforge_replay {
namespace {

constexpr int kSame = 0;
constexpr int kDifferent = 1;
constexpr int kCannot = 2;

constexpr std::string_view kHelp =
    R"(tapforge-replay shows what an SVF, Tcl or KSVF file does to a TAP, or compares two.

tapforge-replay [option ...] FILE            list the operations, one a line
tapforge-replay [option ...] SOURCE CONVERTED
                                             say how the second differs from the first

-scan N           only scan N: where it stands, and the text of its statement
-width N          cut the lines of a list after N characters
-vcd PINS         write the pins to PINS for a waveform viewer, and no list
-strict           any difference gives status 1
-allow CLASS,...  these differences do not give status 1
-tck_freq N       Hz at which the board clocks (default: the source's FREQUENCY)
-v2               KSVF waits after data scans only, as players of version 2 do
-h, --help        this text
--version         the version

Status: 0 the same for the devices, and no wait is shorter; 1 it is not; 2 a file
cannot be read or played. Classes of difference, those with * give status 1, and
those with ! in spite of -allow:
)";

struct Options {
  std::vector<std::string> files;
  std::uint64_t scan = 0;
  std::size_t width = std::string::npos;
  std::string vcd;
  bool strict = false;
  std::set<Difference> allowed;
  double tckHertz = 0;
  bool dataWaits = false;
  bool help = false;
  bool version = false;
};

std::uint64_t numberOf(std::string_view option, std::string_view text) {
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || number == 0) {
    throw Fault("-" + std::string(option) + " needs a number above 0, not \"" + std::string(text) +
                "\"");
  }
  return number;
}

void allow(std::string_view names, Options& options) {
  while (!names.empty()) {
    const std::string_view name = names.substr(0, names.find(','));
    const auto difference = findDifference(name);
    if (!difference) throw Fault("-allow does not know \"" + std::string(name) + "\"; see --help");
    if (ruleOf(*difference).fatal) throw Fault("\"" + std::string(name) + "\" cannot be allowed");
    options.allowed.insert(*difference);
    names.remove_prefix(std::min(name.size() + 1, names.size()));
  }
}

Options parse(const std::vector<std::string>& arguments) {
  Options options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    std::string_view name = arguments[i];
    if (!name.starts_with('-') || name == "-") {
      options.files.push_back(arguments[i]);
      continue;
    }
    name.remove_prefix(name.starts_with("--") ? 2 : 1);
    const auto value = [&]() -> const std::string& {
      if (++i == arguments.size()) throw Fault("-" + std::string(name) + " needs a value");
      return arguments[i];
    };
    if (name == "scan") {
      options.scan = numberOf(name, value());
    } else if (name == "width") {
      options.width = static_cast<std::size_t>(numberOf(name, value()));
    } else if (name == "vcd") {
      options.vcd = value();
    } else if (name == "strict") {
      options.strict = true;
    } else if (name == "allow") {
      allow(value(), options);
    } else if (name == "tck_freq") {
      options.tckHertz = static_cast<double>(numberOf(name, value()));
    } else if (name == "v2") {
      options.dataWaits = true;
    } else if (name == "h" || name == "help") {
      options.help = true;
    } else if (name == "version") {
      options.version = true;
    } else {
      throw Fault("unknown option \"" + arguments[i] + "\"; see --help");
    }
  }
  if (options.help || options.version) return options;
  if (options.files.empty() || options.files.size() > 2) {
    throw Fault("one file to show or two to compare are needed; see --help");
  }
  const bool shows = options.scan > 0 || !options.vcd.empty();
  if (options.files.size() == 2 && shows) throw Fault("-scan and -vcd want one file");
  return options;
}

std::string helpText() {
  std::string text(kHelp);
  for (std::size_t i = 0; i < kDifferenceCount; ++i) {
    const DifferenceRule& rule = ruleOf(static_cast<Difference>(i));
    text.append(rule.harmless ? "    " : rule.fatal ? "  ! " : "  * ").append(rule.name);
    text.append(16 - rule.name.size(), ' ').append(rule.meaning).append("\n");
  }
  return text;
}

// A line on a terminal that says how far a long play has come.
class Progress {
 public:
  explicit Progress(Input& input) {
    if (!isTerminal(stderr)) return;
    input.onBlock = [this](const Input& at) { show(at); };
  }
  ~Progress() {
    if (shown_) std::fputs("\r\033[K", stderr);
  }

 private:
  using Clock = std::chrono::steady_clock;

  void show(const Input& input) {
    const auto now = Clock::now();
    if (now - last_ < std::chrono::milliseconds(500)) return;
    last_ = now;
    shown_ = true;
    const std::uint64_t percent = input.size() > 0 ? input.offset() * 100 / input.size() : 0;
    std::fprintf(stderr, "\r\033[K%s: %llu MB", input.path().c_str(),
                 static_cast<unsigned long long>(input.offset() / 1000000));
    if (input.size() > 0) {
      std::fprintf(stderr, ", %llu %%", static_cast<unsigned long long>(percent));
    }
    std::fflush(stderr);
  }

  Clock::time_point last_ = Clock::now();
  bool shown_ = false;
};

int show(const Options& options, Output& output) {
  Input input(options.files[0]);
  const Progress progress(input);
  const auto reader = makeReader(input, options.dataWaits);
  if (options.scan > 0) {
    showScan(*reader, options.scan, input, output);
  } else if (!options.vcd.empty()) {
    Output pins(options.vcd);
    writeVcd(*reader, pins);
    pins.close();
  } else {
    listOperations(*reader, options.width, output);
  }
  for (const std::string& note : reader->notes()) {
    std::fprintf(stderr, "note: %s: %s\n", input.path().c_str(), note.c_str());
  }
  return kSame;
}

int compare(const Options& options, Output& output) {
  Input source(options.files[0]);
  Input converted(options.files[1]);
  const auto from = makeReader(source, options.dataWaits);
  const auto to = makeReader(converted, options.dataWaits);
  Comparison comparison(*from, *to, options.tckHertz);
  {
    const Progress progress(source);
    comparison.run();
  }
  std::string blamed;
  std::string rest;
  for (std::size_t i = 0; i < kDifferenceCount; ++i) {
    const auto difference = static_cast<Difference>(i);
    if (comparison.findings()[difference].count == 0) continue;
    const DifferenceRule& rule = ruleOf(difference);
    const bool fine = options.allowed.count(difference) != 0 || (rule.harmless && !options.strict);
    (fine ? rest : blamed).append(" ").append(rule.name);
  }
  output << comparison.report();
  if (!blamed.empty()) {
    output << "NOT the same:" << blamed << (rest.empty() ? "" : "; also:" + rest) << "\n";
    return kDifferent;
  }
  output << "the same" << (rest.empty() ? "" : " but for:" + rest) << "\n";
  return kSame;
}

int run(const std::vector<std::string>& arguments) {
  const Options options = parse(arguments);
  Output output;
  int status = kSame;
  if (options.help) {
    output << helpText();
  } else if (options.version) {
    output << "tapforge-replay " TAPFORGE_VERSION "\n";
  } else {
    status = options.files.size() == 1 ? show(options, output) : compare(options, output);
  }
  output.close();
  return status;
}

}  // namespace
}  // namespace tapforge_replay

int main(int argc, char** argv) {
  tapforge_replay::prepareStreams();
  try {
    return tapforge_replay::run(tapforge_replay::commandLine(argc, argv));
  } catch (const std::bad_alloc&) {
    std::fputs("tapforge-replay: not enough memory\n", stderr);
  } catch (const std::exception& fault) {
    std::fprintf(stderr, "tapforge-replay: %s\n", fault.what());
  }
  return tapforge_replay::kCannot;
}

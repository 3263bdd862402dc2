// tapforge-replay: shows what a file does to a TAP, or compares a source with what
// was made of it.

#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <exception>
#include <functional>
#include <map>
#include <new>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "replay/compare.h"
#include "replay/fault.h"
#include "replay/list.h"
#include "replay/summary.h"
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

A FILE of - is standard input.

-scan N           only scan N: where it stands, and the text of its statement
-summary          how many scans, clocks and waits, and how long they take
-vcd PINS         write the pins to PINS for a waveform viewer, and list when scans begin
-w                let -vcd replace a file
-width N          cut the lines of a list after N characters
-strict           any difference gives status 1
-allow CLASS,...  these differences do not give status 1
-tck_freq N       Hz at which the board clocks (default: the source's FREQUENCY)
-v2               KSVF waits after data scans only, as players of version 2 do
-h, --help        this text
--version         the version
--                what follows is no option

Status: 0 the same for the devices, and no wait is shorter; 1 it is not; 2 a file
cannot be read or played. Classes of difference: those with * give status 1 unless they
are allowed, those with ! always.
)";

struct Options {
  std::vector<std::string> files;
  std::uint64_t scan = 0;
  std::size_t width = std::string::npos;
  std::string vcd;
  bool overwrite = false;
  bool summary = false;
  bool strict = false;
  std::set<Difference> allowed;
  double tckHertz = 0;
  bool dataWaits = false;
  std::string text;  // to be shown in place of a file
};

void allow(const std::string& names, Options& options) {
  std::istringstream stream(names);
  for (std::string name; std::getline(stream, name, ',');) {
    const auto difference = findDifference(name);
    if (!difference) throw Fault("-allow cannot take the class \"" + name + "\"; see --help");
    options.allowed.insert(*difference);
  }
}

std::string helpText() {
  std::string text(kHelp);
  for (const auto& [name, meaning, weight] : kDifferenceRules) {
    const char* const mark = std::array{"  ! ", "  * ", "    "}[static_cast<std::size_t>(weight)];
    text.append(mark).append(name).append(16 - name.size(), ' ').append(meaning).append("\n");
  }
  return text;
}

Options parse(const std::vector<std::string>& arguments) {
  Options options;
  std::size_t i = 0;
  std::string_view name;
  const auto value = [&]() -> const std::string& {
    if (++i == arguments.size()) throw Fault("-" + std::string(name) + " needs a value");
    return arguments[i];
  };
  const auto number = [&] {
    const std::string& text = value();
    std::uint64_t found = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), found);
    if (error == std::errc() && end == text.data() + text.size() && found > 0) return found;
    throw Fault("-" + std::string(name) + " needs a number above 0, not \"" + text + "\"");
  };
  const std::map<std::string_view, std::function<void()>> known = {
      {"allow", [&] { allow(value(), options); }},
      {"h", [&] { options.text = helpText(); }},
      {"help", [&] { options.text = helpText(); }},
      {"scan", [&] { options.scan = number(); }},
      {"strict", [&] { options.strict = true; }},
      {"summary", [&] { options.summary = true; }},
      {"tck_freq", [&] { options.tckHertz = static_cast<double>(number()); }},
      {"v2", [&] { options.dataWaits = true; }},
      {"vcd", [&] { options.vcd = value(); }},
      {"version", [&] { options.text = "tapforge-replay " TAPFORGE_VERSION "\n"; }},
      {"w", [&] { options.overwrite = true; }},
      {"width", [&] { options.width = static_cast<std::size_t>(number()); }},
  };
  for (bool ended = false; i < arguments.size(); ++i) {
    name = arguments[i];
    if (ended || !name.starts_with('-') || name == "-") {
      options.files.push_back(arguments[i]);
    } else if (name == "--") {
      ended = true;
    } else {
      name.remove_prefix(name.starts_with("--") ? 2 : 1);
      const auto found = known.find(name);
      if (found == known.end()) throw Fault("unknown option \"" + arguments[i] + "\"; see --help");
      found->second();
    }
  }
  if (!options.text.empty()) return options;
  if (options.files.empty() || options.files.size() > 2) {
    throw Fault("one file to show or two to compare are needed; see --help");
  }
  const int verbs = (options.scan > 0 ? 1 : 0) + (options.vcd.empty() ? 0 : 1) + options.summary;
  if (verbs > (options.files.size() == 1 ? 1 : 0)) {
    throw Fault("-scan, -summary and -vcd want one file, each for itself");
  }
  return options;
}

// A line on a terminal that says how far a long play has come.
class Progress {
 public:
  explicit Progress(Input& input) {
    if (!isTerminal(stderr)) return;
    input.onBlock = [this](const Input& at) {
      const auto now = Clock::now();
      if (now - last_ < std::chrono::milliseconds(500)) return;
      last_ = now;
      shown_ = true;
      const std::uint64_t done = at.offset();
      std::string text = "\r\033[K" + at.path() + ": " + std::to_string(done / 1000000) + " MB";
      if (at.size() > 0) text += ", " + std::to_string(done * 100 / at.size()) + " %";
      std::fputs(text.c_str(), stderr);
    };
  }
  ~Progress() {
    if (shown_) std::fputs("\r\033[K", stderr);
  }

 private:
  using Clock = std::chrono::steady_clock;

  Clock::time_point last_ = Clock::now();
  bool shown_ = false;
};

int show(const Options& options, Output& output) {
  Input input(options.files[0]);
  const Progress progress(input);
  const auto reader = makeReader(input, options.dataWaits);
  if (options.scan > 0) {
    showScan(*reader, options.scan, input, output);
  } else if (options.summary) {
    writeSummary(*reader, options.tckHertz, output);
  } else if (!options.vcd.empty()) {
    if (isSameFile(options.files[0], options.vcd)) {
      throw Fault(options.vcd + ": the file that is read cannot take the pins");
    }
    if (!options.overwrite && isRegularFile(options.vcd)) {
      throw Fault(options.vcd + ": exists; with -w it is replaced");
    }
    Output pins(options.vcd);
    writeVcd(*reader, options.tckHertz, pins, output);
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
  if (options.files[0] == "-" && options.files[1] == "-") {
    throw Fault("standard input can be read only once");
  }
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
    const auto& [name, meaning, weight] = kDifferenceRules[i];
    const bool isFine = weight == Weight::kHarmless && !options.strict;
    (isFine || options.allowed.count(difference) != 0 ? rest : blamed).append(" ").append(name);
  }
  const bool isSame = blamed.empty();
  output << comparison.report() << (isSame ? "the same" : "NOT the same:" + blamed)
         << (rest.empty() ? "" : (isSame ? " but for:" : "; also:") + rest) << "\n";
  return isSame ? kSame : kDifferent;
}

int run(const std::vector<std::string>& arguments) {
  const Options options = parse(arguments);
  Output output;
  int status = kSame;
  try {
    output << options.text;
    if (options.text.empty()) {
      status = options.files.size() == 1 ? show(options, output) : compare(options, output);
    }
    output.close();
  } catch (const ClosedPipe&) {  // who reads a list need not read all of it
    if (options.files.size() == 2 || !options.vcd.empty()) throw;
  }
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

// Plays random SVF files and what the program makes of them, and demands the
// same scans, waits and state moves of both.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "tests/replay/players.h"
#include "tests/replay/random_svf.h"

namespace tapforge::replay {
namespace {

enum Form : unsigned { kSvf = 1, kCopy = 2, kTcl = 4, kKsvf = 8, kAll = 15 };

struct Target {
  std::string options;
  Form form = has("-ksvf") ? kKsvf : has("-tapbus") ? kTcl : has("-c") ? kCopy : kSvf;

  bool has(const std::string& name) const { return (options + ' ').find(name + ' ') + 1 != 0; }
  double number(const std::string& name, double absent) const {
    const std::size_t at = options.find(name + ' ');
    return at == std::string::npos ? absent : std::stod(options.substr(at + name.size()));
  }
};

// clang-format off
const char* const kOptions[] = {
    "", "-s", "-wait 7", "-c",
    "-tapbus", "-tapbus -max_rti_tck 1000 -tck_freq 3000000", "-tapbus -wait 0x10 -s",
    "-ksvf", "-ksvf -extensions", "-ksvf -extensions -kwait", "-ksvf -kwait -runmin 100",
    "-ksvf -fpga", "-ksvf -fpga -rlen 68", "-ksvf -fpga -rlen 64 -s", "-ksvf -v2",
    "-ksvf -useKSDR", "-ksvf -useKSDR -s", "-ksvf -inorder", "-ksvf -s",
    "-ksvf -multiple_runtest", "-ksvf -runmin 100",
};
// clang-format on

/// One source on its way to a target: what it may hold, how it is read, and what
/// the target's player is expected to do.
struct Case {
  SvfLimits limits{};
  SvfReading reading{};
  Trace trace{};
};

void drop(Case& source, std::initializer_list<Event::Kind> kinds) {
  std::erase_if(source.trace, [&](const Event& event) {
    return std::find(kinds.begin(), kinds.end(), event.kind) != kinds.end();
  });
}

void joinWaits(Trace& trace) {
  Trace joined;
  for (Event& event : trace) {
    if (event.kind == Event::kWait && !joined.empty() && joined.back().kind == Event::kWait &&
        joined.back().states[0] == event.states[0]) {
      joined.back().amounts[kClocks].value += event.amounts[kClocks].value;
      joined.back().amounts[kClocks].slack += event.amounts[kClocks].slack;
      joined.back().states = event.states;
    } else {
      joined.push_back(event);
    }
  }
  trace = std::move(joined);
}

bool isPartitioned(const Event& scan, const Target& target) {
  return target.has("-fpga") && scan.kind == Event::kSdr &&
         static_cast<double>(scan.tdi.size()) > target.number("-rlen", 128);
}

// A KSVF wait is a count that holds for all scans behind it, so it is played
// where its count can stand before the scan that it belongs to.
void bindWaits(Trace& trace, const Target& target) {
  const auto is = [&trace](std::size_t i, Event::Kind kind) {
    return i < trace.size() && trace[i].kind == kind;
  };
  for (std::size_t i = 0; i < trace.size(); ++i) {
    const bool end = is(i, Event::kEndIr) || is(i, Event::kEndDr);
    if (end && is(i + 1, Event::kWait)) std::swap(trace[i], trace[i + 1]);  // it is held back
  }
  Trace bound;
  Event count{.kind = Event::kWait, .states = {TapState::kIdle, TapState::kIdle}};  // in force
  const auto wait = [&] {
    if (count.amounts[kClocks].value > 0) bound.push_back(count);
  };
  const auto setCount = [&](const Event& event) {
    const Amount before = std::exchange(count.amounts, event.amounts)[kClocks];
    const bool changed = before.value != count.amounts[kClocks].value;
    if (changed && target.has("-multiple_runtest")) wait();
  };
  bool earlySir = false;
  for (std::size_t i = 0; i < trace.size(); ++i) {
    const Event& event = trace[i];
    if (event.kind == Event::kWait) {
      setCount(event);
      continue;
    }
    if (event.kind == Event::kSir && target.has("-inorder")) {
      earlySir = true;
    } else if (event.isScan()) {
      const bool cut = event.kind == Event::kSir || (earlySir && is(i + 1, Event::kSir));
      const bool own = is(i + 1, Event::kWait);
      if (!own && (cut || !is(i - 1, Event::kWait))) count.amounts = {};
      if (own) setCount(trace[++i]);
      if (isPartitioned(event, target)) count.amounts = {};
    }
    bound.push_back(event);
    if (event.isScan()) wait();
  }
  trace = std::move(bound);
}

/// Where a target says less than its source, or something else.
struct Exception {
  unsigned forms;
  const char* option;  // that it needs; empty: none
  void (*apply)(Case&, const Target&);
};

// In this order. They hold for limits and reading before the trace is there.
const Exception kExceptions[] = {
    // Header and trailer statements become remarks, in Tcl also FREQUENCY and
    // TRST; a remark hides what follows on its line.
    {kSvf | kCopy | kTcl, "", [](Case& to, auto&) { to.limits.anyLineSharing = false; }},
    // Joined scans have one SMASK, TDO and MASK, written only where the data has
    // them; header and trailer bits are compared under their own MASK only.
    {kSvf | kTcl | kKsvf, "", [](Case& to, auto&) { to.reading.joined = true; }},
    // A joined scan without SMASK is written without; in SVF an earlier one then
    // stays in force where the joined lengths are the same.
    {kSvf | kTcl | kKsvf, "",
     [](Case& to, auto& target) {
       std::array<Bits, 2> before;
       for (Event& event : to.trace) {
         if (!event.isScan()) continue;
         const std::size_t length = event.tdi.size();
         const bool stays = target.form == kSvf && before[event.kind].size() == length;
         if (event.care.empty()) event.care = stays ? before[event.kind] : Bits(length, '1');
         before[event.kind] = event.care;
       }
     }},
    // A wait behind each scan moves the TAP away from the scan's end state.
    {kSvf | kTcl, "-wait",
     [](Case& to, auto& target) {
       to.limits.pathsFromAnyState = false;
       to.reading.waitBehindScans = target.number("-wait", 0);
     }},
    // MAXIMUM is refused for Tcl, and for KSVF behind a time that becomes a count.
    {kTcl, "", [](Case& to, auto&) { to.limits.maximum = false; }},
    {kKsvf, "", [](Case& to, auto&) { to.limits.maximumAfterBareTime = false; }},
    // KSVF reads any unit but TCK as seconds.
    {kKsvf, "", [](Case& to, auto&) { to.limits.systemClock = false; }},
    // Expected values are left out on demand, and always for SIR in KSVF.
    {kAll, "",
     [](Case& to, auto& target) {
       for (Event& event : to.trace) {
         const bool dropped = target.form == kKsvf && event.kind == Event::kSir;
         if (dropped || target.has("-s")) event.mask.clear();
       }
     }},
    // The copy and KSVF hold TDI AND SMASK instead of both.
    {kCopy | kKsvf, "",
     [](Case& to, auto&) {
       for (Event& event : to.trace) {
         event.tdi = bitAnd(event.tdi, event.care);
         event.care.assign(event.tdi.size(), '1');
       }
     }},
    // Records of a partitioned scan have no mask: every TDO bit is compared.
    {kKsvf, "-fpga",
     [](Case& to, auto& target) {
       for (Event& event : to.trace) {
         if (isPartitioned(event, target)) event.mask.assign(event.mask.size(), '1');
       }
     }},
    // SVF prints times with three digits and the frequency in whole hertz.
    {kSvf | kCopy, "",
     [](Case& to, auto&) {
       drop(to, {Event::kSilent});
       for (Event& event : to.trace) {
         auto& [clocks, least, most, hertz] = event.amounts;
         least.slack = std::abs(least.value) * 0.005;
         most.slack = std::abs(most.value) * 0.005;
         hertz.slack = 0.99;
       }
     }},
    // Tcl and KSVF wait in clocks only, a time counted at -tck_freq in single
    // precision. Tcl adds up a count and a time, KSVF drops a time beside a
    // count, and MAXIMUM.
    {kTcl | kKsvf, "",
     [](Case& to, auto& target) {
       for (Event& event : to.trace) {
         auto& [clocks, least, most, hertz] = event.amounts;
         if (least.value >= 0 && (target.form == kTcl || clocks.value < 0)) {
           const double product = least.value * target.number("-tck_freq", 1e6);
           clocks = {std::max(clocks.value, 0.0) + product, 1 + product * 1e-6};
         }
         least = most = {};
       }
     }},
    // Tcl has clock and reset line in remarks only, and cuts long waits in pieces.
    {kTcl, "",
     [](Case& to, auto&) {
       drop(to, {Event::kTrst, Event::kFrequency, Event::kSilent});
       joinWaits(to.trace);
     }},
    // KSVF has one wait for several in a row, in idle whatever the run state;
    // none away from a scan, behind a partitioned scan, or behind a SIR with
    // -inorder; it waits again behind the SDR right after a RUNTEST (with
    // -inorder not if a second SIR is next), and before the scan too with
    // -multiple_runtest. -kwait keeps all waits.
    {kKsvf, "",
     [](Case& to, auto& target) {
       for (Event& event : to.trace) {
         const bool bound = event.kind == Event::kWait && !target.has("-kwait");
         if (bound) event.states = {TapState::kIdle, TapState::kIdle};
       }
       if (!target.has("-kwait")) joinWaits(to.trace);
       for (Event& event : to.trace) {
         double& clocks = event.amounts[kClocks].value;
         if (event.kind == Event::kWait) clocks = std::max(clocks, target.number("-runmin", 0));
       }
       if (!target.has("-kwait")) bindWaits(to.trace, target);
     }},
    // KSVF steps through all states with -extensions, else only reset and idle,
    // and not at all for players of version 2.
    {kKsvf, "",
     [](Case& to, auto& target) {
       std::erase_if(to.trace, [&target](const Event& event) {
         if (event.kind != Event::kStep || target.has("-extensions")) return false;
         return target.has("-v2") || event.states[0] > TapState::kIdle;
       });
     }},
    // KSVF end states are idle or not, and left out without -extensions.
    {kKsvf, "",
     [](Case& to, auto& target) {
       if (!target.has("-extensions")) drop(to, {Event::kEndIr, Event::kEndDr});
       for (Event& event : to.trace) {
         const bool ir = event.kind == Event::kEndIr;
         if (!(ir || event.kind == Event::kEndDr) || event.states[0] == TapState::kIdle) continue;
         event.states[0] = ir ? TapState::kIrPause : TapState::kDrPause;
       }
     }},
    // KSVF has no clock and no reset line.
    {kKsvf, "",
     [](Case& to, auto&) {
       drop(to, {Event::kTrst, Event::kFrequency, Event::kSilent});
     }},
};

void applyExceptions(Case& source, const Target& target) {
  for (const Exception& exception : kExceptions) {
    const bool holds = (exception.forms & target.form) != 0 && target.has(exception.option);
    if (holds) exception.apply(source, target);
  }
}

Trace playOutput(const std::string& output, const Target& target) {
  if (target.form == kKsvf) {
    const auto counted = target.has("-v2") ? CountedScans::kDataOnly : CountedScans::kAll;
    return playKsvf(bytesFromListing(output), counted);
  }
  Case played{.trace = target.form == kTcl ? playTcl(output) : playSvf(output)};
  drop(played, {Event::kSilent});
  if (target.form != kTcl) return played.trace;
  for (const Event& event : played.trace) {
    const bool whole = event.amounts[kClocks].value > target.number("-max_rti_tck", 40000);
    if (whole) throw std::out_of_range("wait above -max_rti_tck");
  }
  joinWaits(played.trace);
  return played.trace;
}

// The first difference; empty when there is none.
std::string difference(const Trace& wanted, const std::string& output, const Target& target) try {
  const Trace seen = playOutput(output, target);
  const auto at = [](const Trace& trace, std::size_t i) {
    return i < trace.size() ? describe(trace[i]) : "nothing more";
  };
  for (std::size_t i = 0; i < std::max(wanted.size(), seen.size()); ++i) {
    if (i < wanted.size() && i < seen.size() && matches(wanted[i], seen[i])) continue;
    return "event " + std::to_string(i) + "\nexpected " + at(wanted, i) + "\nseen " + at(seen, i);
  }
  return "";
} catch (const std::exception& fault) {
  return std::string("the output cannot be played: ") + fault.what();
}

bool isOdd(char hexDigit) { return std::stoi(std::string(1, hexDigit), nullptr, 16) % 2 != 0; }

// Where the lowest bit of a hex digit is a TDI, a mask or a compared TDO bit of
// a scan, so that no player may overlook its change.
std::vector<std::size_t> tellingDigits(const std::string& output, Form form) {
  std::vector<std::size_t> found;
  if (form == kKsvf) {
    std::istringstream lines(output);
    std::string before;
    std::size_t at = 0;
    for (std::string line; std::getline(lines, line); at += line.size() + 1, before = line) {
      const std::size_t last = at + line.size() - 1;
      const bool test = line.starts_with("KSDRTDO");
      const bool masked = before.starts_with("KTDOMASK");
      if (test) found.push_back(at + line.rfind(' ') - 1);
      if (test && masked) found.push_back(at - 2);
      if (test ? line[7] != ' ' || (masked && isOdd(before.back()))
               : line.starts_with("KSIR") || line.starts_with("KSDR 0x")) {
        found.push_back(last);
      }
    }
    return found;
  }
  constexpr std::size_t kLabel = 9;  // all labels are as wide
  for (std::string_view label : {"    TDI (", "  SMASK (", "   MASK ("}) {
    for (std::size_t at = 0; (at = output.find(label, at)) != output.npos; at += kLabel) {
      const std::string before = output.substr(output.rfind('\n', at - 2) + 1, 3);
      if (form == kCopy && before != "SIR" && before != "SDR") continue;  // of a pattern
      found.push_back(at + kLabel);
      const bool compared = label == "   MASK (" && isOdd(output[at + kLabel]);
      if (compared) found.push_back(output.rfind("    TDO (", at) + kLabel);
    }
  }
  return found;
}

#ifndef TAPFORGE_PROGRAM
#define TAPFORGE_PROGRAM ""
#endif
std::string program() {
  const char* path = std::getenv("TAPFORGE");
  return path != nullptr ? path : TAPFORGE_PROGRAM;
}

class Replay : public testing::TestWithParam<const char*> {
 protected:
  Replay() { std::filesystem::create_directory(folder_); }
  ~Replay() override { std::filesystem::remove_all(folder_); }

  std::string read(const char* name) const {
    std::ifstream file(folder_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  /// The program's output, KSVF as the listing, whose bytes are the file.
  std::string convert(const std::string& source) const {
    const Target target{GetParam()};
    std::ofstream(folder_ / "in", std::ios::binary) << source;
    const char* more = target.form == kKsvf ? " -tck_freq 1000000 -a list" : "";
    const std::string command = "cd '" + folder_.string() + "' && '" + program() + "' " +
                                target.options + " -w -o out" + more + " -i in > log 2>&1";
    EXPECT_EQ(std::system(command.c_str()), 0) << read("log");
    if (target.form == kCopy) return uncommentValues(read("out"));
    if (target.form != kKsvf) return read("out");
    EXPECT_TRUE(bytesFromListing(read("list")) == read("out"));
    return read("list");
  }

 private:
  std::filesystem::path folder_ = std::filesystem::temp_directory_path() /
                                  ("tapforge_replay_" + std::to_string(std::random_device()()));
};

TEST_P(Replay, OutputPlaysLikeItsSource) {
  const Target target{GetParam()};
  ASSERT_NE(program(), "") << "set TAPFORGE to the path of the program";
  std::mt19937 random(20);
  std::size_t flips = 0;
  for (unsigned i = 0; i < 250 && !HasFailure(); ++i) {
    Case to;
    applyExceptions(to, target);
    const std::string source = randomSvf(i, 3 + i % 60, to.limits);
    SCOPED_TRACE("source " + std::to_string(i) + ":\n" + source.substr(0, 3000));
    const std::string output = convert(source);
    to.trace = playSvf(source, to.reading);
    applyExceptions(to, target);
    EXPECT_EQ(difference(to.trace, output, target), "") << output.substr(0, 3000);

    const std::vector<std::size_t> digits = tellingDigits(output, target.form);
    for (int flip = 0; flip < 3 && !digits.empty(); ++flip, ++flips) {
      std::string spoiled = output;
      char& digit = spoiled[digits[random() % digits.size()]];
      digit = "1032547698badcfe"[std::stoi(std::string(1, digit), nullptr, 16)];
      EXPECT_NE(difference(to.trace, spoiled, target), "") << "a flipped bit went unnoticed";
    }
  }
  EXPECT_GT(flips, 500U);
}

INSTANTIATE_TEST_SUITE_P(AllOptions, Replay, testing::ValuesIn(kOptions), [](const auto& options) {
  std::string name = std::string("Svf") + options.param;
  std::erase_if(name, [](unsigned char letter) { return std::isalnum(letter) == 0; });
  return name;
});

}  // namespace
}  // namespace tapforge::replay

#include "replay/summary.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <set>

namespace tapforge_replay {
namespace {

using Kind = Operation::Kind;

constexpr double kNone = std::numeric_limits<double>::infinity();

struct Summary {
  explicit Summary(double hertz) : period(hertz > 0 ? 1 / hertz : kNone) {}

  double period;  // of TCK, seconds; like the other times infinite where it is not known
  double time = 0;
  double clocks = 0;                     // TCKs
  double lowestHertz = kNone;            // of the FREQUENCYs
  std::array<std::uint64_t, 2> scans{};  // of DR and of IR
  std::array<std::size_t, 2> longest{};  // bits
  std::uint64_t waits = 0;
  std::array<double, 2> counts{};  // of the waits, TCKs and SCKs
  double seconds = 0;              // of the waits
  std::set<std::string_view> extras;

  void pass(double count, double least) {
    clocks += count;
    time += std::max(count > 0 ? count * period : 0, least);
  }

  void add(const Wait& wait) {
    const double count = std::max(wait.clocks, 0.0);
    const double least = std::max(wait.seconds, 0.0);
    ++waits;
    counts[wait.systemClock ? 1 : 0] += count;
    seconds += least;
    pass(wait.systemClock ? 0 : count, least);
    if (wait.maximum >= 0) extras.insert("MAXIMUM");
  }

  void add(const Operation& operation, bool knowsRate) {
    const bool isScan = operation.kind == Kind::kScan;
    if (isScan || operation.kind == Kind::kWait || operation.kind == Kind::kMove) {
      // The last bit of a scan is shifted by the clock that leads on.
      const std::size_t bits = isScan ? operation.tdi->size() - 1 : 0;
      pass(static_cast<double>(operation.before.size() + bits + operation.after.size()), 0);
    }
    if (isScan) {
      ++scans[operation.instruction];
      longest[operation.instruction] =
          std::max(longest[operation.instruction], operation.tdi->size());
      if (operation.care != nullptr) extras.insert("SMASK");
    }
    if (operation.kind == Kind::kWait) add(operation.wait);
    if (operation.kind == Kind::kParallelIo) extras.insert("PIO");
    if (operation.kind == Kind::kResetLine && operation.word != "absent") extras.insert("TRST");
    if (operation.kind != Kind::kFrequency) return;
    if (operation.hertz > 0) lowestHertz = std::min(lowestHertz, operation.hertz);
    if (!knowsRate) period = operation.hertz > 0 ? 1 / operation.hertz : kNone;
  }
};

std::string numberOr(const char* otherwise, double value, const char* unit) {
  const int digits = value == std::floor(value) ? 15 : 12;  // the last of a sum may be wrong
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%.*g%s", digits, value, unit);
  return std::isfinite(value) ? text.data() : otherwise;
}

}  // namespace

void writeSummary(Reader& reader, double tckHertz, Output& output) {
  Summary sum(tckHertz);
  Operation operation;
  while (reader.next(operation), operation.kind != Kind::kEnd) sum.add(operation, tckHertz > 0);

  const auto scans = [&sum](std::size_t i) {
    return std::to_string(sum.scans[i]) + ", longest " + std::to_string(sum.longest[i]) + " bits";
  };
  const std::size_t vector = reader.longestVector();
  std::string extras;
  for (const std::string_view extra : sum.extras) extras.append(" ").append(extra);
  output << "form:             " << reader.form() << "\nIR scans:         " << scans(1)
         << "\nDR scans:         " << scans(0) << "\nKSVF_MAX_BITS:    "
         << std::to_string(vector > 0 ? vector : std::max(sum.longest[0], sum.longest[1]))
         << "\nclocks:           " << numberOr("", sum.clocks, " TCK")
         << "\nwaits:            " << std::to_string(sum.waits) << ", of "
         << numberOr("", sum.counts[0], " TCK, ") << numberOr("", sum.counts[1], " SCK, ")
         << numberOr("", sum.seconds, " SEC")
         << "\nlowest FREQUENCY: " << numberOr("none", sum.lowestHertz, " Hz")
         << "\ntime:             " << numberOr("unknown without -tck_freq", sum.time, " s")
         << "\nextras:           " << (extras.empty() ? "none" : extras.substr(1)) << "\n";
}

}  // namespace tapforge_replay

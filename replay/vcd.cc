#include "replay/vcd.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "replay/list.h"

namespace tapforge_replay {
namespace {

using Kind = Operation::Kind;

constexpr double kDrawnClocks = 16;   // of a wait
constexpr double kMostUnits = 1e18;   // of time
constexpr double kUnitsOfClock = 10;  // at least, at the rate of the start
constexpr double kDrawnHertz = 1e6;
constexpr std::size_t kListedDigits = 16;  // of a value in the list

class Drawer {
 public:
  Drawer(double hertz, Output& pins, Output& list)
      : pins_(pins), list_(list), firstHertz_(hertz), hertz_(hertz) {}

  void draw(Operation& operation) {
    const bool isScan = operation.kind == Kind::kScan;
    if (operation.kind == Kind::kFrequency) {
      hertz_ = operation.hertz > 0 ? operation.hertz : firstHertz_;
    }
    if (operation.kind == Kind::kResetLine) drive(operation.word);
    if (!isScan && operation.kind != Kind::kWait && operation.kind != Kind::kMove) return;
    walk(operation.before);
    if (isScan) scan(operation);
    if (operation.kind == Kind::kWait) wait(operation.wait);
    // The last bit of a scan is shifted by the clock that leaves the shift state.
    walk({operation.after.begin() + (isScan ? 1 : 0), operation.after.end()});
  }

  void end() { pins_ << now(); }

 private:
  // The unit of time is that of the rate at the first clock, so that no viewer has to go
  // through more steps than it needs.
  void begin() {
    constexpr std::array kNames = {"fs", "ps", "ns", "us", "ms", "s"};
    const double steps = std::floor(15 - std::log10(hertz_ * kUnitsOfClock) + 1e-9);  // from 1 fs
    const auto unit = static_cast<std::size_t>(std::clamp(steps, 0.0, 17.0));
    unitsOfSecond_ = std::pow(10.0, 15 - static_cast<double>(unit));
    pins_ << "$comment Pins of a TAP, as tapforge-replay plays a file. $end\n$timescale 1" +
                 std::string(unit % 3, '0') + " " + kNames[unit / 3] +
                 " $end\n$scope module tap $end\n";
    for (const char* const signal :
         {"c tck", "m tms", "i tdi", "o tdo_expected", "e compare", "r trst"}) {
      pins_ << "$var wire 1 " + std::string(signal) + " $end\n";
    }
    pins_ << "$upscope $end\n$enddefinitions $end\n#0\n1c\n1m\n1i\nxo\n0e\n" +
                 std::string(1, trst_) + "r\n";
    pass(0.5);
    walk(std::vector<TapState>(5, TapState::kReset));
  }

  // A line with the present time.
  std::string now() {
    if (unitsOfSecond_ == 0) begin();
    return "#" + std::to_string(static_cast<std::uint64_t>(time_)) + "\n";
  }
  // At least one unit for every half of a clock.
  void pass(double clocks) {
    time_ = std::min(time_ + clocks * std::max(unitsOfSecond_ / hertz_, 2.0), kMostUnits);
  }

  // The pins are set with the falling edge, the state changes with the rising one.
  void clock(TapState next, char tdi, char tdo) {
    std::string text = now() + "0c\n";
    const std::string levels = {nextState(state_, true) == next ? '1' : '0', tdi, tdo,
                                tdo == 'x' ? '0' : '1'};
    for (std::size_t i = 0; i < levels.size(); ++i) {
      if (levels[i] != levels_[i]) text.append({levels[i], "mioe"[i], '\n'});
    }
    pass(0.5);
    text += now() + "1c\n";
    pass(0.5);
    levels_ = levels;
    state_ = next;
    pins_ << text;
  }

  void walk(const std::vector<TapState>& states) {
    for (const TapState state : states) clock(state, '1', 'x');
  }

  void drive(const std::string& mode) {
    if (mode == "absent") return;
    trst_ = mode == "on" ? '0' : mode == "off" ? '1' : 'z';
    if (unitsOfSecond_ == 0) return;
    pins_ << now() + trst_ + "r\n";
    pass(1);
  }

  void scan(Operation& scan) {
    constexpr double kMicroseconds = 1e6;
    list_ << numberText(std::floor(time_) / (unitsOfSecond_ / kMicroseconds)) +
                 " us: " + listed(scan, kListedDigits) + "\n";
    const std::size_t bits = scan.tdi->size();
    for (std::size_t i = 0; i < bits; ++i) {
      const bool compared = scan.mask != nullptr && scan.mask->bit(i);
      const char tdo = !compared ? 'x' : scan.tdo->bit(i) ? '1' : '0';
      clock(i + 1 == bits ? scan.after.front() : state_, scan.tdi->bit(i) ? '1' : '0', tdo);
    }
  }

  void wait(const Wait& wait) {
    const double needed = std::ceil(wait.seconds * hertz_);
    const double clocks = std::floor(std::min(std::max(wait.clocks, needed), kMostUnits));
    const double drawn = std::min(clocks, kDrawnClocks);
    for (double i = 0; i < drawn; ++i) clock(state_, '1', 'x');
    if (clocks == drawn) return;
    pins_ << now() + "zc\n";
    pass(clocks - drawn);
  }

  Output& pins_;
  Output& list_;
  double firstHertz_;
  double hertz_;
  double unitsOfSecond_ = 0;  // before the first clock
  double time_ = 0;           // in units
  char trst_ = 'z';
  TapState state_ = TapState::kReset;
  std::string levels_ = "11x0";  // TMS, TDI, TDO, comparison
};

}  // namespace

void writeVcd(Reader& reader, double tckHertz, Output& pins, Output& list) {
  Drawer drawer(tckHertz > 0 ? tckHertz : kDrawnHertz, pins, list);
  Operation operation;
  while (reader.next(operation), operation.kind != Kind::kEnd) drawer.draw(operation);
  drawer.end();
}

}  // namespace tapforge_replay

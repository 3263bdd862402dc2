#include "replay/vcd.h"

#include <algorithm>
#include <cmath>

namespace tapforge_replay {
namespace {

using Kind = Operation::Kind;

constexpr double kDrawnClocks = 16;  // of a wait
constexpr double kPicosecondsPerSecond = 1e12;
constexpr double kMostPicoseconds = 1e18;

class Drawer {
 public:
  explicit Drawer(Output& output) : output_(output) {
    output_ << "$comment Pins of a TAP, as tapforge-replay plays a file. $end\n"
               "$timescale 1 ps $end\n"
               "$scope module tap $end\n"
               "$var wire 1 c tck $end\n"
               "$var wire 1 m tms $end\n"
               "$var wire 1 i tdi $end\n"
               "$var wire 1 o tdo_expected $end\n"
               "$var wire 1 e compare $end\n"
               "$var reg 4 s state $end\n"
               "$var integer 32 n scan $end\n"
               "$upscope $end\n"
               "$enddefinitions $end\n"
               "#0\n0c\n1m\n1i\nxo\n0e\nb0 s\nb0 n\n";
  }

  void draw(const Operation& operation) {
    if (operation.kind == Kind::kFrequency) {
      period_ =
          std::max(2.0, kPicosecondsPerSecond / (operation.hertz > 0 ? operation.hertz : 1e6));
    }
    const bool moves = operation.kind == Kind::kScan || operation.kind == Kind::kWait ||
                       operation.kind == Kind::kMove;
    if (!moves) return;
    walk(operation.before);
    if (operation.kind == Kind::kScan) scan(operation);
    if (operation.kind == Kind::kWait) wait(operation.wait);
    // The last bit of a scan is shifted by the clock that leaves the shift state.
    const auto skip = operation.kind == Kind::kScan ? 1 : 0;
    walk({operation.after.begin() + skip, operation.after.end()});
  }

  void end() { output_ << "#" << std::to_string(time()) << "\n"; }

 private:
  std::uint64_t time() const { return static_cast<std::uint64_t>(picoseconds_); }

  void pass(double duration) { picoseconds_ = std::min(picoseconds_ + duration, kMostPicoseconds); }

  // The pins are set with the falling edge, the state changes with the rising one.
  void clock(TapState next, char tdi, char tdo) {
    const std::string pins = {nextState(state_, true) == next ? '1' : '0', tdi, tdo,
                              tdo == 'x' ? '0' : '1'};
    std::string text = "#" + std::to_string(time()) + "\n0c\n";
    for (std::size_t i = 0; i < pins.size(); ++i) {
      if (pins[i] != pins_[i]) text.append({pins[i], "mioe"[i], '\n'});
    }
    pass(period_ / 2);
    text += "#" + std::to_string(time()) + "\n1c\n";
    if (next != state_) text += binary(static_cast<std::uint64_t>(next)) + " s\n";
    pass(period_ / 2);
    pins_ = pins;
    state_ = next;
    output_ << text;
  }

  static std::string binary(std::uint64_t number) {
    std::string text;
    do {
      text.insert(text.begin(), number % 2 != 0 ? '1' : '0');
      number /= 2;
    } while (number > 0);
    return 'b' + text;
  }

  void walk(const std::vector<TapState>& states) {
    for (const TapState state : states) clock(state, '1', 'x');
  }

  void scan(const Operation& scan) {
    output_ << binary(scan.number) + " n\n";
    const std::size_t bits = scan.tdi->size();
    for (std::size_t i = 0; i < bits; ++i) {
      const bool compared = scan.mask != nullptr && scan.mask->bit(i);
      const char tdo = !compared ? 'x' : scan.tdo->bit(i) ? '1' : '0';
      clock(i + 1 == bits ? scan.after.front() : state_, scan.tdi->bit(i) ? '1' : '0', tdo);
    }
  }

  void wait(const Wait& wait) {
    const double needed = wait.seconds * kPicosecondsPerSecond / period_;
    const double clocks = std::floor(std::min(std::max(wait.clocks, std::ceil(needed)), 1e18));
    const double drawn = std::min(clocks, kDrawnClocks);
    for (double i = 0; i < drawn; ++i) clock(state_, '1', 'x');
    if (clocks == drawn) return;
    output_ << "#" + std::to_string(time()) + "\nzc\n";
    pass((clocks - drawn) * period_);
  }

  Output& output_;
  TapState state_ = TapState::kReset;
  std::string pins_ = "11x0";  // TMS, TDI, TDO, comparison
  double picoseconds_ = 0;
  double period_ = 1e6;  // of TCK, picoseconds
};

}  // namespace

void writeVcd(Reader& reader, Output& output) {
  Drawer drawer(output);
  Operation operation;
  while (reader.next(operation), operation.kind != Kind::kEnd) drawer.draw(operation);
  drawer.end();
}

}  // namespace tapforge_replay

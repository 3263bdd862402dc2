#ifndef TAPFORGE_TESTS_REPLAY_TAP_CHAIN_H_
#define TAPFORGE_TESTS_REPLAY_TAP_CHAIN_H_

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tapforge::replay {

/// The sixteen states of the TAP controller, numbered as KSVF numbers them.
// clang-format off
enum class TapState {
  kReset, kIdle, kDrSelect, kDrCapture, kDrShift, kDrExit1, kDrPause, kDrExit2, kDrUpdate,
  kIrSelect, kIrCapture, kIrShift, kIrExit1, kIrPause, kIrExit2, kIrUpdate
};
// clang-format on

std::string_view nameOf(TapState state);  ///< lower case, as SVF spells it
std::optional<TapState> findState(std::string_view name);
bool isStable(TapState state);                ///< reset, idle or a pause state
TapState nextState(TapState from, bool tms);  ///< after one clock

/// Characters '0' and '1'. Index 0 is the bit shifted first, which hex text
/// holds in the lowest bit of its last digit. Empty: not given.
using Bits = std::string;

/// Missing leading digits are 0. Throws when a bit above `length` is set.
Bits bitsFromHex(std::string_view hex, std::size_t length);
Bits bitAnd(Bits left, const Bits& right);

/// A number and by how much a replay of it may differ; below 0: not given.
struct Amount {
  double value = -1;
  double slack = 0;
};
enum AmountName { kClocks, kMinSeconds, kMaxSeconds, kHertz };

/// One thing that a player did to the chain. What a kind does not use stays empty.
struct Event {
  enum Kind { kSir, kSdr, kWait, kStep, kEndIr, kEndDr, kTrst, kFrequency, kSilent };

  Kind kind = kSilent;  ///< kSilent: a statement that by itself does nothing
  Bits tdi{};           ///< header, data and trailer bits of a scan in one piece
  Bits care{};          ///< which TDI bits matter (SMASK)
  Bits tdo{};
  Bits mask{};  ///< which TDO bits are compared
  std::vector<TapState>
      states{};  ///< one clock's step, an end state, or a wait's run and end state
  std::array<Amount, 4> amounts{};
  std::string word{};  ///< the mode of a TRST

  bool isScan() const { return kind == kSir || kind == kSdr; }
};
using Trace = std::vector<Event>;

/// Same event, numbers within the slack of `expected`; TDO counts where it is compared.
bool matches(const Event& expected, const Event& actual);
std::string describe(const Event& event);

/// A scan chain behind one TAP controller, in reset at first. It follows the
/// controller's state and records what happens.
class TapChain {
 public:
  TapState state() const { return state_; }
  void scan(Event scan);
  void setEnd(Event::Kind endIrOrDr, TapState state);
  /// Records a step per clock. The first state may be any stable one, every other
  /// is one clock away from the one before; throws otherwise.
  void walk(const std::vector<TapState>& named);
  /// A state not given is the one of the wait before, idle at first.
  void wait(std::optional<TapState> run, std::optional<TapState> end,
            const std::array<Amount, 4>& amounts);
  void record(Event event) { trace_.push_back(std::move(event)); }
  Trace take() { return std::move(trace_); }

 private:
  TapState state_ = TapState::kReset;
  TapState endIr_ = TapState::kIdle;
  TapState endDr_ = TapState::kIdle;
  TapState run_ = TapState::kIdle;
  TapState runEnd_ = TapState::kIdle;
  Trace trace_;
};

}  // namespace tapforge::replay

#endif  // TAPFORGE_TESTS_REPLAY_TAP_CHAIN_H_

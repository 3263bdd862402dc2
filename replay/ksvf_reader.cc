#include <algorithm>
#include <array>
#include <utility>

#include "replay/fault.h"
#include "replay/input.h"
#include "replay/operation.h"
#include "replay/text_reader.h"

// The player as it runs on a board, but for longer scans. It is a part of this
// file so that the compiler joins its loop over the bits with the port below, and
// a Fault can pass through it.
#ifndef KSVF_MAX_BITS
#define KSVF_MAX_BITS 0x40000000
#endif
#define KSVF_OWN_WAIT 1
#include "player/ksvf_player.c"  // NOLINT(bugprone-suspicious-include)

namespace tapforge_replay {
namespace {

using Kind = Operation::Kind;

constexpr std::uint32_t kWordBits = Bits::kWordBits;

// The board of the player: it reads the file, watches the pins, and answers each
// scan with what the file expects. What is seen on the pins becomes operations.
class KsvfReader final : public Reader {
 public:
  KsvfReader(Input& input, bool dataWaits) : input_(input), player_(new KsvfPlayer) {
    ksvf_begin(player_.get(), this);
    player_->wait_after_data_only = dataWaits;
    clear(seen_);  // the reset at the start stands in no file
  }

  std::string_view form() const override { return "KSVF"; }
  bool beginsWithReset() const override { return true; }
  std::size_t longestVector() const override { return longest_; }

  void next(Operation& operation) override {
    while (taken_ == ready_ && player_->result == KSVF_PLAYING) step();
    if (taken_ != ready_) {
      std::swap(operation, queue_[taken_++]);
      return;
    }
    operation.kind = Kind::kEnd;
    operation.place = {0, input_.offset()};
  }

  int read() { return input_.get(); }

  // For most bits of a file no more than the first lines, so that the compiler
  // puts them into the player's loop.
  bool clock(bool tms, bool tdi) {
    if (room_ == 0 && !makeRoom(tms)) return false;
    const bool tdo = (answer_ & 1) != 0;
    answer_ >>= 1;
    shifted_ = shifted_ >> 1 | std::uint64_t{tdi} << (kWordBits - 1);
    if (--room_ == 0) keepWord(tms);
    return tdo;
  }

  void wait(bool tms, std::uint32_t clocks) {
    if (nextState(state_, tms) != state_) throw Fault("the player waits outside a stable state");
    Operation wait;
    if (moved_) {  // a scan: what comes after its end state leads to the wait
      const auto end = static_cast<TapState>(seen_.instruction ? player_->end_ir : player_->end_dr);
      auto at = seen_.after.begin();
      while (at != seen_.after.end() && *at != end) ++at;
      if (at != seen_.after.end()) ++at;
      wait.before.assign(at, seen_.after.end());
      seen_.after.erase(at, seen_.after.end());
      finish();
    } else {
      wait.before.swap(seen_.before);
    }
    std::swap(seen_, wait);
    seen_.kind = Kind::kWait;
    seen_.wait = {};
    seen_.wait.state = state_;
    seen_.wait.clocks = clocks;
    moved_ = true;
  }

 private:
  // Plays a command, which becomes up to two operations: a scan and its wait.
  void step() {
    ready_ = taken_ = 0;
    if (!scanning_) place_.offset = input_.offset();
    ksvf_step(player_.get());
    longest_ = std::max<std::uint32_t>({longest_, player_->bits, player_->data_bits});
    if (player_->result > KSVF_DONE) fail();
    if (player_->result == KSVF_DONE && input_.peek() >= 0) {
      throw Fault(input_.path() + ": byte " + std::to_string(input_.offset()) +
                  ": something follows KCOMPLETE");
    }
    if (scanning_) return;  // records are still to come
    if (player_->command == KSVF_KENDIR || player_->command == KSVF_KENDDR) {
      seen_.kind = Kind::kEndState;
      seen_.instruction = player_->command == KSVF_KENDIR;
      const auto end = seen_.instruction ? player_->end_ir : player_->end_dr;
      seen_.word = nameOf(static_cast<TapState>(end));
      finish();
    } else if (moved_ || !seen_.before.empty()) {
      finish();
    }
  }

  [[noreturn]] void fail() const {
    constexpr std::array kReasons = {
        "the player finds a difference",     "no KSVF command has this code",
        "a command that may not stand here", "an operand that the command cannot have",
        "a scan of more than 1 Gibit",       "the file ends before KCOMPLETE",
    };
    throw Fault(input_.path() + ": byte " + std::to_string(player_->command_offset) + ": " +
                kReasons.at(player_->result - KSVF_MISMATCH));
  }

  static void clear(Operation& operation) {
    operation.kind = Kind::kMove;
    operation.before.clear();
    operation.after.clear();
  }

  void enter(TapState next) {
    state_ = next;
    (moved_ ? seen_.after : seen_.before).push_back(next);
  }

  void finish() {
    seen_.place = place_;
    std::swap(queue_.at(ready_++), seen_);
    clear(seen_);
    moved_ = false;
  }

  void beginScan() {
    scanning_ = true;
    room_ = left_ = 0;
    uncompared_ = 0;
    tdi_.clear();
    tdo_.clear();
    mask_.clear();
  }

  // 64 bits of a vector of the player from a bit on that is a multiple of 8.
  static std::uint64_t wordOf(const std::uint8_t* vector, std::uint32_t bits, std::uint32_t from) {
    std::uint64_t word = 0;
    const std::uint32_t bytes = (bits + 7) / 8;
    for (std::uint32_t i = 0; i < 8 && from / 8 + i < bytes; ++i) {
      word |= std::uint64_t{vector[bytes - 1 - from / 8 - i]} << 8 * i;
    }
    return word;
  }

  // For the next bit of a scan. Without one the clock moves the TAP.
  [[gnu::noinline]] bool makeRoom(bool tms) {
    if (!scanning_) {
      const TapState before = state_;
      enter(nextState(state_, tms));
      const bool shifting = state_ == TapState::kDrShift || state_ == TapState::kIrShift;
      const bool captured = before == TapState::kDrCapture || before == TapState::kIrCapture;
      if (shifting && captured && player_->command != KSVF_KSTATE) beginScan();
      return false;
    }
    if (left_ == 0) {  // a record begins, or the whole scan
      left_ = player_->bits;
      if (!player_->in_records) tdi_.reserve(left_);
    }
    const bool compared = player_->compare != KSVF_COMPARE_NONE;
    expected_ = compared ? wordOf(player_->tdo, player_->bits, player_->bits - left_) : 0;
    answer_ = expected_;
    filled_ = room_ = std::min(left_, kWordBits);
    return true;
  }

  [[gnu::noinline]] void keepWord(bool tms) {
    std::uint64_t mask = 0;
    const std::uint32_t first = (player_->bits - left_) / 8;
    for (std::uint32_t i = 0; i * 8 < filled_; ++i) {
      mask |= std::uint64_t{ksvf_mask_byte(player_.get(), first + i)} << 8 * i;
    }
    if ((mask | expected_) == 0) {  // most long scans compare nothing, and then need no room
      uncompared_ += filled_;
    } else {
      catchUp();
      tdo_.append(expected_, filled_);
      mask_.append(mask, filled_);
    }
    tdi_.append(shifted_ >> (kWordBits - filled_), filled_);
    left_ -= filled_;
    if (tms) endScan();
  }

  void catchUp() {
    tdo_.append(uncompared_, false);
    mask_.append(uncompared_, false);
    uncompared_ = 0;
  }

  void endScan() {
    const bool compared = mask_.size() > 0;
    if (compared) catchUp();
    scanning_ = false;
    moved_ = true;
    seen_.kind = Kind::kScan;
    seen_.number = player_->scan;
    seen_.instruction = player_->instruction;
    seen_.tdi = &tdi_;
    seen_.care = nullptr;
    seen_.tdo = compared ? &tdo_ : nullptr;
    seen_.mask = compared ? &mask_ : nullptr;
    enter(nextState(state_, true));
  }

  Input& input_;
  std::unique_ptr<KsvfPlayer> player_;  // never filled with zeros: it is large
  TapState state_ = TapState::kReset;

  std::array<Operation, 3> queue_;  // from this command
  std::size_t ready_ = 0;
  std::size_t taken_ = 0;
  Place place_;
  Operation seen_;      // so far
  bool moved_ = false;  // its scan or wait is over

  bool scanning_ = false;
  Bits tdi_;
  Bits tdo_;
  Bits mask_;
  std::uint64_t shifted_ = 0;   // up to 64 bits of TDI in the highest bits
  std::uint64_t expected_ = 0;  // the TDO that belongs to them,
  std::uint64_t answer_ = 0;    // and what is left of it for the pins
  std::uint32_t filled_ = 0;    // bits of such a word
  std::uint32_t room_ = 0;      // bits still to come for it
  std::uint32_t left_ = 0;      // bits of the record from this word on
  std::uint32_t longest_ = 0;   // bits of a scan or record
  std::size_t uncompared_ = 0;  // bits that tdo_ and mask_ lag behind tdi_
};

}  // namespace

std::unique_ptr<Reader> makeKsvfReader(Input& input, bool dataWaits) {
  return std::make_unique<KsvfReader>(input, dataWaits);
}

}  // namespace tapforge_replay

using tapforge_replay::KsvfReader;

int ksvf_port_read(void* port) { return static_cast<KsvfReader*>(port)->read(); }

int ksvf_port_clock(void* port, int tms, int tdi) {
  return static_cast<int>(static_cast<KsvfReader*>(port)->clock(tms != 0, tdi != 0));
}

int ksvf_port_wait(void* port, int tms, uint32_t clocks) {
  static_cast<KsvfReader*>(port)->wait(tms != 0, clocks);
  return 0;
}

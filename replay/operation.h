#ifndef TAPFORGE_REPLAY_OPERATION_H_
#define TAPFORGE_REPLAY_OPERATION_H_

#include <cstdint>
#include <string>
#include <vector>

#include "replay/bits.h"
#include "replay/tap.h"

namespace tapforge_replay {

/// Where an operation stands in its file.
struct Place {
  std::uint64_t line = 0;    ///< from 1; 0 in a binary file
  std::uint64_t offset = 0;  ///< bytes before its first one
};

/// "line 12" or, in a binary file, "byte 77".
std::string describe(const Place& place);

/// What a wait asks for: at least both amounts. Below 0: not given.
struct Wait {
  TapState state = TapState::kIdle;
  bool systemClock = false;  ///< counted in the system's clock (SCK), not in TCK
  double clocks = -1;
  double seconds = -1;
  double maximum = -1;  ///< seconds, or less

  bool operator==(const Wait&) const = default;
};
std::string describe(const Wait& wait);

/// One thing that a file does to the TAP or its surroundings. A reader fills the
/// same one again and again; what a kind does not use is not to be looked at.
struct Operation {
  enum class Kind {
    kScan,
    kWait,
    kMove,        ///< a move on its own, as by STATE
    kEndState,    ///< where scans end from now on; moves nothing
    kResetLine,   ///< TRST
    kFrequency,   ///< of TCK
    kParallelIo,  ///< PIO, PIOMAP
    kEnd,         ///< of the file
  };

  Kind kind = Kind::kEnd;
  Place place;

  /// States entered, one TCK each: up to the shift state (included), the wait
  /// or the end of the move, and what comes after them.
  std::vector<TapState> before;
  std::vector<TapState> after;

  /// A scan, header, data and trailer bits in one piece. The bits belong to the
  /// reader and hold until it is asked for the next operation.
  std::uint64_t number = 0;  ///< of the scan, from 1
  bool instruction = false;  ///< the register; also of an end state
  const Bits* tdi = nullptr;
  const Bits* care = nullptr;  ///< which TDI bits matter (SMASK); null: all
  const Bits* tdo = nullptr;   ///< null where mask is
  const Bits* mask = nullptr;  ///< which TDO bits are compared; null: none

  Wait wait;
  std::string word;   ///< mode of the reset line, end state, vector or map of parallel I/O
  double hertz = -1;  ///< of TCK; below 0: as fast as may be
};

/// Reads a file as operations.
class Reader {
 public:
  Reader() = default;
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;
  virtual ~Reader() = default;

  /// Throws Fault when the file cannot be read or played.
  virtual void next(Operation& operation) = 0;
  virtual std::string_view form() const = 0;  ///< for people
  /// Whether a player of the file resets the TAP before anything else.
  virtual bool beginsWithReset() const { return false; }

  /// Bits of the longest vector that a player of KSVF has to hold; 0 in other forms.
  virtual std::size_t longestVector() const { return 0; }

  /// What is odd about the file, a sentence each.
  const std::vector<std::string>& notes() const { return notes_; }

 protected:
  void note(const std::string& text);  ///< each text once, and only the first few

 private:
  std::vector<std::string> notes_;
};

/// Text of an operation, of values only the first `mostDigits`.
std::string describe(const Operation& operation, std::size_t mostDigits);

/// A number as short as it can be given back exactly.
std::string numberText(double value);

}  // namespace tapforge_replay

#endif  // TAPFORGE_REPLAY_OPERATION_H_

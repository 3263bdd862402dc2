#ifndef TAPFORGE_REPLAY_TEXT_READER_H_
#define TAPFORGE_REPLAY_TEXT_READER_H_

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "replay/input.h"
#include "replay/operation.h"

namespace tapforge_replay {

/// What the values of one statement or of a header or trailer are. Values that a
/// statement leaves out stay while the length stays, but TDO never does.
struct Pattern {
  struct Value {
    Bits bits;
    bool given = false;
  };
  enum Name { kTdi, kTdo, kMask, kSmask, kNameCount };

  std::size_t length = 0;
  std::array<Value, kNameCount> values;

  void begin(std::size_t newLength);  ///< of a statement
  Value& operator[](Name name) { return values[name]; }
  const Value& operator[](Name name) const { return values[name]; }
};

/// Joins header, data and trailer of a register into one scan.
class ScanJoiner {
 public:
  enum Piece { kHeader, kData, kTrailer, kPieceCount };

  Pattern& pattern(bool instruction, Piece piece) { return patterns_[instruction ? 1 : 0][piece]; }

  /// Fills in the values of a scan of the present patterns.
  void join(bool instruction, Operation& scan);

 private:
  const Bits* joined(bool instruction, Pattern::Name name);

  std::array<std::array<Pattern, kPieceCount>, 2> patterns_;
  std::array<Bits, Pattern::kNameCount> joined_;
};

/// Where the TAP is and where statements take it. Each function fills in the
/// states that an operation enters.
class TapFollower {
 public:
  TapState state() const { return state_; }
  void scan(Operation& scan);
  void setEnd(bool instruction, TapState state) { (instruction ? endIr_ : endDr_) = state; }

  /// To a stable state by its default way. A pause state that the TAP is in is
  /// left and entered again, through Update and Capture.
  void moveTo(TapState target, Operation& move);
  /// To a state that is one TCK away. Returns false when it is not.
  bool step(TapState target, Operation& move);

  /// In the state set last and to the end state, which is that state unless one
  /// was given later.
  void wait(Operation& wait);
  void setRun(TapState state) { run_ = runEnd_ = state; }
  void setRunEnd(TapState state) { runEnd_ = state; }

 private:
  void go(TapState target, std::vector<TapState>& entered);

  TapState state_ = TapState::kReset;
  TapState endIr_ = TapState::kIdle;
  TapState endDr_ = TapState::kIdle;
  TapState run_ = TapState::kIdle;
  TapState runEnd_ = TapState::kIdle;
};

/// What the readers of SVF and of Tcl have in common: numbers, values, states.
class TextReader : public Reader {
 public:
  explicit TextReader(Input& input) : input_{input} {}

 protected:
  void countLine(int character) {
    if (character == '\n' || (character == '\r' && input_.peek() != '\n')) ++line_;
  }

  /// Reads the hex digits from here on, which may go on behind what divides them.
  /// Returns whether there are any.
  bool readDigits();
  /// Makes a value of the digits read since the last one.
  void finishValue(Pattern::Value& value, std::size_t length);

  double number(std::string_view text) const;
  std::size_t length(std::string_view text) const;
  TapState state(std::string_view text) const;
  TapState requireStable(TapState state) const;
  TapState stableState(std::string_view text) const { return requireStable(state(text)); }

  /// Complete an operation: a scan of the present patterns, the state in which scans
  /// end from now on, and a move. A path of several states is taken step by step, but
  /// its first one may be any stable state.
  void finishScan(bool instruction, Operation& scan);
  void finishEndState(bool instruction, TapState state, Operation& operation);
  void finishMove(const std::vector<TapState>& path, Operation& move);

  /// Ends the reading with a Fault that names the present line.
  [[noreturn]] virtual void fail(const std::string& text) const;

  Input& input_;
  std::uint64_t line_ = 1;
  ScanJoiner joiner_;
  TapFollower tap_;

 private:
  double parse(std::string_view text, const char* characters, double most, const char* what) const;

  std::uint64_t scans_ = 0;
  static constexpr unsigned kDigitsOfWord = 16;
  std::vector<std::uint64_t> digits_;  // of a value, in words,
  std::uint64_t rest_ = 0;             // and those that do not fill one yet,
  unsigned room_ = kDigitsOfWord;      // as so many are missing
};

/// The file as operations; its form is seen from its first characters. `dataWaits`
/// makes KSVF wait after data scans only, as players of version 2 do.
std::unique_ptr<Reader> makeReader(Input& input, bool dataWaits);

std::unique_ptr<Reader> makeSvfReader(Input& input);
std::unique_ptr<Reader> makeTclReader(Input& input);
std::unique_ptr<Reader> makeKsvfReader(Input& input, bool dataWaits);

}  // namespace tapforge_replay

#endif  // TAPFORGE_REPLAY_TEXT_READER_H_

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
  const Bits* joined(const std::array<Pattern, kPieceCount>& pieces, Pattern::Name name,
                     Bits& storage);

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

/// What the readers of SVF and of Tcl have in common: characters, words, values.
class TextReader : public Reader {
 protected:
  /// `commentStarts`: characters that may begin a comment, and so end a word.
  TextReader(Input& input, std::string_view commentStarts);

  /// Skips the comment that such a character, not read yet, begins, up to its
  /// line end.
  virtual void skipComment() {}

  /// Past blanks, line ends and comments. Returns the next character or -1.
  int skipBlanks();
  /// To the end of the line, which is not read.
  void skipLine();
  void countLine(int character);

  /// The next word in lower case: up to a blank, a comment or one of ();{}.
  /// Such a mark is a word of its own. Empty at the end of the file. It holds
  /// until the next word is read.
  std::string_view word();
  /// As word(), but it must be there.
  std::string_view needWord();
  void expect(std::string_view wanted);

  /// Reads the hex digits of a value up to a mark, or to what is no digit where the
  /// mark is 0. Digits of a value before a mark may have blanks between them.
  void readValue(Pattern& pattern, std::size_t name, char closing);

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
  std::uint64_t scans_ = 0;

 private:
  enum CharKind : std::uint8_t { kPlain, kBlank, kMark, kComment };
  CharKind kindOf(int character) const { return kinds_[static_cast<unsigned char>(character)]; }

  std::array<CharKind, 256> kinds_{};
  std::string word_;
  std::vector<std::uint64_t> digits_;
};

/// What makeReader() chooses from.
std::unique_ptr<Reader> makeSvfReader(Input& input);
std::unique_ptr<Reader> makeTclReader(Input& input);
std::unique_ptr<Reader> makeKsvfReader(Input& input, bool dataWaits);

}  // namespace tapforge_replay

#endif  // TAPFORGE_REPLAY_TEXT_READER_H_

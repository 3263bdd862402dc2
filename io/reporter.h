#ifndef TAPFORGE_IO_REPORTER_H
#define TAPFORGE_IO_REPORTER_H

#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

namespace tapforge {

class OutputFile;

/// "name file error", for a read or a write that failed.
std::string fileErrorText(std::string_view fileName);

/// The texts in which the modes' messages and status lines differ.
struct MessageStyle {
  std::string_view toolName;

  // Start, finish and elapsed time.
  std::string_view startLabel;
  std::string_view finishLabel;
  std::string_view elapsedLead;
  std::string_view elapsedTail;

  // Progress on the console: what is sent before a line that replaces the last
  // one, and what wipes the last one away.
  std::string_view screenRewind;
  std::string_view screenWipe;
};

enum class Level { error, warning, note };

/// How a status line is set on the console and in the log.
enum class StatusStyle {
  newLine,  // a line end before the text, none after it
  rewind,   // replaces the console line, no line end
  ownLine,  // a line end before and after the text
  line,     // a line end after the text
  wipe,     // the text, then the console line is wiped
};

/// Whether a message tells the place in the input.
enum class Where { nowhere, input };

/// The input as messages see it.
class InputPosition {
 public:
  virtual ~InputPosition() = default;
  /// The lines that follow a message's text: file, line number, last item read
  /// and, where the mode shows it, the source line with a caret.
  virtual std::string positionText() = 0;
  /// A line that follows a message without place: where the statement in hand begins,
  /// if that is told.
  virtual std::string statementText() { return {}; }
};

/// Thrown by every end of a run before its time: an error that has been
/// reported, or the help. Unwinding frees what the run owns; runProgram() turns
/// it into the exit status of the process.
struct ProgramEnd {
  int status;
};

/// All messages of a run go through this class. Errors, warnings and notes go
/// to standard output and the log; status lines go to the log and, when the
/// screen is on, to standard error.
///
/// A log that cannot be written is reported once, and ends the run after the
/// message or status line in hand.
class Reporter {
 public:
  /// The style must live as long as the reporter.
  explicit Reporter(const MessageStyle& style) : style_(style) {}
  virtual ~Reporter() = default;
  Reporter(const Reporter&) = delete;
  Reporter& operator=(const Reporter&) = delete;

  const MessageStyle& style() const { return style_; }

  // Messages are cut at 299 characters. Without an input a message that asks for
  // the place prints without one.

  void warning(std::string_view text, Where where = Where::input) {
    errHandler(Level::warning, text, where);
    endIfLogLost();
  }
  void note(std::string_view text, Where where = Where::input) {
    errHandler(Level::note, text, where);
    endIfLogLost();
  }

  /// From now on a warning is kept, and printed once at the end of the run, with how often
  /// it came and the first place.
  void collectWarnings() { collects_ = true; }

  /// Prints an error and the finish and elapsed times, and ends the run with
  /// status 1.
  [[noreturn]] void fatal(std::string_view text, Where where = Where::input) {
    printFatal(text, where);
    throw ProgramEnd{1};
  }

  // For the end of a run, where nothing is left to be ended: never throw.
  void printFatal(std::string_view text, Where where);  // what fatal() prints
  void errHandler(Level level, std::string_view text, Where where);
  void printFinish();  // what finishClock() sends

  /// Fatal "(tool) text", as for a file that cannot be opened.
  [[noreturn]] void fileError(std::string_view text);

  void statusMsg(std::string_view text, StatusStyle style) {
    sendStatus(text, style);
    endIfLogLost();
  }

  /// False when status lines are dropped, so that callers need not make them.
  bool wantsStatus() const { return iDbg_SCR_ACTIVITY_ || log_ != nullptr; }

  /// Starts the clock for the elapsed time, and sends the time of day.
  void startClock() {
    t_TimeStart_ = showDateTime(style_.startLabel);
    endIfLogLost();
  }
  /// Sends the time of day and, when the clock was started, the elapsed time.
  void finishClock() {
    printFinish();
    endIfLogLost();
  }

  /// Whether status lines also go to the screen; off at first.
  void setScreen(bool on) { iDbg_SCR_ACTIVITY_ = on; }
  /// Where messages are kept; null for nowhere. Not owned.
  void setLog(OutputFile* log) { log_ = log; }
  /// What messages take their place from; null for none. Not owned.
  void setInput(InputPosition* input) { input_ = input; }

 protected:
  /// Send finished text to standard output and standard error; tests replace
  /// them.
  virtual void print(std::string_view text);
  virtual void printStatus(std::string_view text);

 private:
  void printWarnings();
  void message(Level level, std::string_view text, std::string_view place);
  void sendStatus(std::string_view text, StatusStyle style);
  void toLog(std::string_view text);
  void endIfLogLost() {
    if (!logLost_) return;
    printFinish();
    throw ProgramEnd{1};
  }
  std::time_t showDateTime(std::string_view label);
  void showElapsedTime(std::time_t t_TimeFinish);

  const MessageStyle& style_;
  OutputFile* log_ = nullptr;
  bool logLost_ = false;
  struct Kept {
    std::string text;
    std::string place;
    std::uint64_t count;
  };
  bool collects_ = false;
  std::vector<Kept> kept_;  // warnings, few different ones
  InputPosition* input_ = nullptr;
  std::time_t t_TimeStart_ = 0;  // 0: not started
  bool iDbg_SCR_ACTIVITY_ = false;
};

}  // namespace tapforge

#endif  // TAPFORGE_IO_REPORTER_H

#ifndef TAPFORGE_SHELL_IO_REPORTER_H
#define TAPFORGE_SHELL_IO_REPORTER_H

#include <ctime>
#include <string>
#include <string_view>

#include "shell/io/dialect.h"

namespace tapforge {

class OutputFile;

enum class Level { error, warning, note, plain };

/// How a status line stands on the console and in the log.
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
  virtual std::string positionText() const = 0;
};

/// Thrown by the last step of a fatal message and by every other early end of
/// the run; `main` turns it into the exit status. Unwinding frees what the run
/// owns.
struct ProgramEnd {
  int status;
};

/// The one door for all messages of a run. Errors, warnings and notes go to
/// standard output and the log; status lines go to the log and, when the
/// screen is on, to standard error.
class Reporter {
 public:
  explicit Reporter(const Dialect& dialect) : dialect_(dialect) {}
  virtual ~Reporter() = default;
  Reporter(const Reporter&) = delete;
  Reporter& operator=(const Reporter&) = delete;

  const Dialect& dialect() const { return dialect_; }

  /// Prints one message, cut at 299 characters. Level::error ends the run: the
  /// finish and elapsed times follow and finishRun() is called.
  void errHandler(Level level, std::string_view text, Where where);

  void warning(std::string_view text, Where where = Where::input) {
    errHandler(Level::warning, text, where);
  }
  [[noreturn]] void fatal(std::string_view text, Where where = Where::input);

  /// Fatal with "Null Ptr [tag]" when `present` is false.
  void nullPtrChk(bool present, std::string_view tag) {
    if (!present) fatal(std::string("Null Ptr [").append(tag).append("]"), Where::nowhere);
  }

  /// Fatal "(tool) text", as for a file that cannot be opened.
  [[noreturn]] void fileError(std::string_view text);

  /// Fatal "name file error", for a read or write that failed. When the run is
  /// already ending the message is only printed, so that it cannot recurse.
  void chkFileErr(std::string_view fileName);

  void statusMsg(std::string_view text, StatusStyle style, bool toScreen = true, bool toLog = true);

  /// Whether a status line goes anywhere; saves making one for nobody.
  bool wantsStatus() const { return screenOn_ || log_ != nullptr; }

  /// Notes the time and sends it as a status line; the first form starts the
  /// clock that the elapsed time is reckoned from.
  void startClock();
  void finishClock();

  /// From here on a failing file is reported without ending the run again.
  void beginEnd() { ending_ = true; }

  void setScreen(bool on) { screenOn_ = on; }
  void setLog(OutputFile* log) { log_ = log; }
  void setInput(const InputPosition* input) { input_ = input; }

 protected:
  /// The last steps, replaceable so that tests stay in one process.
  virtual void print(std::string_view text);
  virtual void printStatus(std::string_view text);
  [[noreturn]] virtual void finishRun() { throw ProgramEnd{1}; }

 private:
  void toLog(std::string_view text);
  void showDateTime(std::string_view label, std::time_t now);

  const Dialect& dialect_;
  OutputFile* log_ = nullptr;
  const InputPosition* input_ = nullptr;
  std::time_t t_TimeStart = 0;
  bool screenOn_ = false;
  bool ending_ = false;
};

}  // namespace tapforge

#endif  // TAPFORGE_SHELL_IO_REPORTER_H

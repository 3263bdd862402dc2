#ifndef TAPFORGE_SHELL_OPTIONS_H
#define TAPFORGE_SHELL_OPTIONS_H

#include <cstdio>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "shell/io/files.h"
#include "shell/io/output_file.h"
#include "shell/io/reporter.h"
#include "shell/io/text.h"

namespace tapforge {

/// An input file that was opened when the command line named it, which proves
/// that it can be read; the conversion goes on with the same handle, so that a
/// pipe works too.
struct InputFile {
  std::string name;
  FilePtr file;
};

/// The files of a run, and what the options that both modes share set.
struct Shell {
  explicit Shell(Reporter& reporter) : report(reporter) {}

  Reporter& report;
  bool iOverWritePrompt = true;
  std::vector<InputFile> inputs;
  std::unique_ptr<OutputFile> pFC_Output;
  std::unique_ptr<OutputFile> pFC_Ascii;
  std::unique_ptr<OutputFile> pFC_Log;
  // The output of mode 1 is opened only after all options.
  std::optional<std::string> outputName;
};

/// The walk over the command line: an option at a time, with its values.
class ArgCursor {
 public:
  explicit ArgCursor(std::span<char*> arguments) : arguments_(arguments) {}

  /// The next argument, whatever it looks like; nothing at the end.
  std::optional<std::string> value();
  /// The next argument when it begins with "-", without that and in lower case.
  std::optional<std::string> option();
  /// The next argument when it does not begin with "-".
  std::optional<std::string> fileName();
  /// The argument taken last.
  std::string_view last() const { return arguments_[next_ - 1]; }
  bool atEnd() const { return next_ == arguments_.size(); }

 private:
  std::span<char*> arguments_;
  std::size_t next_ = 0;
};

/// A tab and 75 "=", the frame of an option list.
extern const std::string_view kRuleLine;

/// Ends the run with status 1 after the text on standard error, the first form
/// with "tool: " in front.
[[noreturn]] void refuse(const Reporter& report, std::string_view text);
[[noreturn]] void refuseText(std::string_view text);

/// "0x" hexadecimal, "0" octal, else decimal; the whole argument, kept in 32
/// bits. A missing or bad value is warned about and gives nothing, which makes
/// the option an unknown one.
std::optional<int> numberValue(ArgCursor& args, std::string_view option, Reporter& report);
bool takeNumber(ArgCursor& args, std::string_view option, long& variable, Shell& shell);
void warnInvalidNumber(std::string_view value, std::string_view option, Reporter& report);

/// A decimal number, taken as far as it goes; a missing one ends the run with
/// "tool: missing".
long decimalArgument(ArgCursor& args, std::string_view missing, const Reporter& report);

/// The next argument as a file name; fatal "missing [what] filename".
std::string fileNameArgument(ArgCursor& args, std::string_view what, Reporter& report);

/// Creates a file that the options name, after asking if need be. Fatal when it
/// is one of the inputs.
std::unique_ptr<OutputFile> createFile(const std::string& name, Shell& shell);

/// Fatal when `name` is an input (by name for the first one, as a file for all).
void refuseInputAsOutput(const std::string& name, const Shell& shell);
/// Fatal when `name` is the output by name, or the file of any output.
void refuseOutputAsInput(const std::string& name, const Shell& shell);

/// What the options that both modes have do.
void takeLogFile(ArgCursor& args, Shell& shell);
void takeOptionKey(ArgCursor& args, Shell& shell);

/// One option of a mode: how it is taken (false: its value is bad) and its part
/// of the help, which may be empty.
template <typename Vars>
struct Option {
  std::string_view name;
  bool (*take)(ArgCursor& args, Vars& vars, Shell& shell);
  std::string_view help;
  bool internal = false;
};

/// Takes options until the end or the first argument that is none. False when
/// `unknown` could not be taken.
template <typename Vars>
bool walkOptions(ArgCursor& args, std::span<const Option<Vars>> table, Vars& vars, Shell& shell,
                 std::string& unknown) {
  while (const std::optional<std::string> name = args.option()) {
    bool taken = false;
    for (const Option<Vars>& option : table) {
      if (option.name == *name) taken = option.take(args, vars, shell);
    }
    if (!taken) {
      unknown = *name;
      return false;
    }
  }
  return true;
}

/// The entries of a mode's table for the options that both modes have.
template <typename Vars>
constexpr Option<Vars> overwriteOption(std::string_view name, std::string_view help) {
  return {name,
          [](ArgCursor&, Vars&, Shell& shell) {
            shell.iOverWritePrompt = false;
            return true;
          },
          help};
}

template <typename Vars>
constexpr Option<Vars> kLogOption = {"l",
                                     [](ArgCursor& args, Vars&, Shell& shell) {
                                       takeLogFile(args, shell);
                                       return true;
                                     },
                                     ""};

template <typename Vars>
constexpr Option<Vars> kKeyOption = {"z",
                                     [](ArgCursor& args, Vars&, Shell& shell) {
                                       takeOptionKey(args, shell);
                                       return true;
                                     },
                                     ""};

/// Prints a heading and the options' help between two rule lines on standard
/// output.
template <typename Vars>
void displayProgOptions(std::string_view heading, std::span<const Option<Vars>> table,
                        bool withInternal) {
  std::string text = concat(heading, "\n", kRuleLine, "\n");
  for (const Option<Vars>& option : table) {
    if (withInternal || !option.internal) text += option.help;
  }
  text += concat(kRuleLine, "\n");
  std::fwrite(text.data(), 1, text.size(), stdout);
}

}  // namespace tapforge

#endif  // TAPFORGE_SHELL_OPTIONS_H

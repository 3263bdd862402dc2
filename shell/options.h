#ifndef TAPFORGE_SHELL_OPTIONS_H
#define TAPFORGE_SHELL_OPTIONS_H

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "io/text.h"
#include "shell/run.h"

namespace tapforge {

/// The walk over the command line: an option at a time, with its values.
class ArgCursor {
 public:
  /// The arguments after the program name, which must outlive the cursor.
  explicit ArgCursor(std::span<const std::string> arguments) : arguments_(arguments) {}

  /// The next argument, whatever it looks like; nothing at the end.
  std::optional<std::string> getCmdToken();
  /// The next argument if it begins with "-", without that and in lower case.
  std::optional<std::string> option();
  /// The next argument if it does not begin with "-".
  std::optional<std::string> fileName();
  bool atEnd() const { return next_ == arguments_.size(); }
  /// The arguments that are left.
  std::span<const std::string> rest() const { return arguments_.subspan(next_); }
  /// Whether a "-i" anywhere has standard input among the names after it.
  bool namesStandardInput() const;
  /// Whether option() has given this name.
  bool seen(std::string_view name) const {
    return std::find(names_.begin(), names_.end(), name) != names_.end();
  }

 private:
  bool nextIsOption() const { return arguments_[next_].starts_with('-'); }

  std::span<const std::string> arguments_;
  std::size_t next_ = 0;
  std::vector<std::string> names_;
};

/// What an option works on, apart from the variables of its mode.
struct OptionCall {
  std::string_view name;  // in lower case, without "-"
  ArgCursor& args;        // after the option, for its values
  RunFiles& files;
};

/// One option of a mode. `Vars` is the mode's struct of option variables.
template <typename Vars>
struct Option {
  std::string_view name;  // in lower case, without "-"
  /// Takes the option with its values. Returns false if it cannot, which is
  /// then reported as an unknown option.
  bool (*take)(const OptionCall& call, Vars& vars);
  /// Its lines of the help, in which the options follow the table; may be empty.
  std::string_view help;
  /// Listed only in the help of all options.
  bool internal = false;
};

/// The next argument as a file name; fatal "missing [what] filename".
std::string fileNameArgument(const OptionCall& call, std::string_view what);

/// A decimal number, as far as the argument is one; 0 if it begins with none.
/// A missing one ends the run with "tool: missing".
std::int64_t decimalArgument(const OptionCall& call, std::string_view missing);

/// The range of the numbers that options take.
constexpr std::int64_t kSmallestNumber = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kLargestNumber = std::numeric_limits<std::int32_t>::max();

/// The next argument as a whole number from `smallest` to kLargestNumber: "0x"
/// hexadecimal, "0" octal, else decimal. Warns about a missing or bad one and
/// returns false.
bool numberArgument(const OptionCall& call, std::int64_t smallest, std::int64_t& variable);

// Actions of options that only set one variable, a member of Vars.

/// Has no value and no effect.
template <typename Vars>
bool takeNothing(const OptionCall& /*call*/, Vars& /*vars*/) {
  return true;
}

/// Has no value.
template <auto variable, typename Vars>
bool setFlag(const OptionCall& /*call*/, Vars& vars) {
  vars.*variable = true;
  return true;
}

/// Has a value as numberArgument() reads it.
template <auto variable, std::int64_t smallest = kSmallestNumber, typename Vars>
bool setNumber(const OptionCall& call, Vars& vars) {
  return numberArgument(call, smallest, vars.*variable);
}

// The options that both modes have, each with its help in one place.

/// -l: opens the log and sends all later messages there too.
bool takeLogFile(const OptionCall& call);
/// -z: turns the screen on if the number is odd.
bool takeOptionKey(const OptionCall& call);
/// -d and -w, whose help is the mode's.
bool takeOverwrite(const OptionCall& call);

template <typename Vars>
constexpr Option<Vars> kLogOption = {
    "l", [](const OptionCall& call, Vars&) { return takeLogFile(call); }, ""};

template <typename Vars>
constexpr Option<Vars> kKeyOption = {
    "z", [](const OptionCall& call, Vars&) { return takeOptionKey(call); }, ""};

template <typename Vars>
constexpr Option<Vars> overwriteOption(std::string_view name, std::string_view help) {
  return {name, [](const OptionCall& call, Vars&) { return takeOverwrite(call); }, help};
}

template <typename Vars>
constexpr Option<Vars> kFrequencyOption = {
    // At least 1 Hz: with less, every wait would be one of 0 clocks.
    "tck_freq", setNumber<&Vars::lGlobTckFreq, 1>,
    "\t-tck_freq N = specify cable frequency in TCK (e.g., N = 1000000 for 1 MHz)\n"};

// The walk.

/// Takes options until the end or the first argument that is none. Returns the
/// name of an option that is not in the table or could not be taken, if there was
/// one.
template <typename Vars>
std::optional<std::string> walkOptions(ArgCursor& args, std::span<const Option<Vars>> table,
                                       Vars& vars, RunFiles& files) {
  files.stdinIsInput = args.namesStandardInput();
  while (std::optional<std::string> name = args.option()) {
    const auto row = std::find_if(table.begin(), table.end(), [&name](const Option<Vars>& option) {
      return option.name == *name;
    });
    if (row == table.end() || !row->take({*name, args, files}, vars)) return name;
  }
  return std::nullopt;
}

/// Ends the run with status 1 after printing the text on standard error.
[[noreturn]] void exitUsage(std::string_view text);

/// -exact: wrong usage with any of these options, or with arguments left over. Sets what
/// else it needs of a run.
void beginExact(const ArgCursor& args, std::initializer_list<std::string_view> refused,
                RunFiles& files);

/// The line before and after an option list: a tab and 75 "=".
inline constexpr std::string_view kRuleLine =
    "\t===========================================================================";
static_assert(kRuleLine.size() == 76);

enum class InternalOptions { hidden, shown };

/// Prints a heading and the options' help between two rule lines on standard
/// output.
template <typename Vars>
void displayProgOptions(std::string_view heading, std::span<const Option<Vars>> table,
                        InternalOptions internal) {
  std::string text = concat(heading, "\n", kRuleLine, "\n");
  for (const Option<Vars>& option : table) {
    if (!option.internal || internal == InternalOptions::shown) text += option.help;
  }
  text += concat(kRuleLine, "\n");
  std::fwrite(text.data(), 1, text.size(), stdout);
}

}  // namespace tapforge

#endif  // TAPFORGE_SHELL_OPTIONS_H

#include "shell/options.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace tapforge {

std::optional<std::string> ArgCursor::getCmdToken() {
  if (atEnd()) return std::nullopt;
  return arguments_[next_++];
}

std::optional<std::string> ArgCursor::option() {
  if (atEnd() || !nextIsOption()) return std::nullopt;
  std::string name = arguments_[next_++].substr(1);
  std::transform(name.begin(), name.end(), name.begin(), toLower);
  names_.push_back(name);
  return name;
}

std::optional<std::string> ArgCursor::fileName() {
  if (atEnd() || nextIsOption()) return std::nullopt;
  return arguments_[next_++];
}

bool ArgCursor::namesStandardInput() const {
  for (std::size_t i = 0; i < arguments_.size(); ++i) {
    if (arguments_[i] != "-i" && arguments_[i] != "-I") continue;
    for (std::size_t name = i + 1; name < arguments_.size(); ++name) {
      if (name > i + 1 && arguments_[name].starts_with('-')) break;
      if (isStandardInput(arguments_[name])) return true;
    }
  }
  return false;
}

std::string fileNameArgument(const OptionCall& call, std::string_view what) {
  std::optional<std::string> name = call.args.getCmdToken();
  if (!name) call.files.report.fatal(concat("missing [", what, "] filename"), Where::nowhere);
  return *std::move(name);
}

std::int64_t decimalArgument(const OptionCall& call, std::string_view missing) {
  const std::optional<std::string> text = call.args.getCmdToken();
  if (!text) exitUsage(concat(call.files.report.style().toolName, ": ", missing));
  return std::strtoll(text->c_str(), nullptr, 10);
}

bool numberArgument(const OptionCall& call, std::int64_t smallest, std::int64_t& variable) {
  Reporter& report = call.files.report;
  const std::optional<std::string> text = call.args.getCmdToken();
  if (!text) {
    report.warning(concat("expected a decimal number for \"-", call.name, "\"\n"), Where::nowhere);
    return false;
  }
  // The base is told here, since some C libraries know prefixes of their own.
  const std::string_view digits = std::string_view(*text).substr(
      std::min(text->find_first_not_of(" \t\n\v\f\r+-"), text->size()));
  const bool isHex = digits.starts_with("0x") || digits.starts_with("0X");
  char* end = nullptr;
  // A number that 64 bits cannot hold becomes the nearest they can, which is refused.
  const std::int64_t number = std::strtoll(text->c_str(), &end,
                                           isHex                     ? 16
                                           : digits.starts_with('0') ? 8
                                                                     : 10);
  if (end == text->c_str() || *end != '\0' || number < smallest || number > kLargestNumber) {
    const std::string_view word = call.name == "linenum" ? "" : " option";
    report.warning(concat("invalid decimal number [", *text, "] for -", call.name, word, "\n"),
                   Where::nowhere);
    return false;
  }
  variable = number;
  return true;
}

bool takeLogFile(const OptionCall& call) {
  RunFiles& files = call.files;
  files.report.setLog(nullptr);
  files.makeChannel(files.pFC_Log, fileNameArgument(call, "LogFile"));
  files.report.setLog(files.pFC_Log.get());
  return true;
}

bool takeOptionKey(const OptionCall& call) {
  const std::int64_t lOptionKey = decimalArgument(call, "specify option key");
  if (lOptionKey % 2 != 0) call.files.report.setScreen(true);
  return true;
}

bool takeOverwrite(const OptionCall& call) {
  call.files.iOverWritePrompt = false;
  return true;
}

void beginExact(const ArgCursor& args, std::initializer_list<std::string_view> refused,
                RunFiles& files) {
  for (const std::string_view name : refused) {
    if (!args.seen(name)) continue;
    exitUsage(concat(files.report.style().toolName, ": -exact does not go with -", name, "\n"));
  }
  if (!args.atEnd()) {
    exitUsage(concat(files.report.style().toolName, ": -exact: the options end at [",
                     args.rest().front(), "]\n"));
  }
  files.removesUnfinished = true;
  files.report.collectWarnings();
}

void exitUsage(std::string_view text) {
  std::fflush(stdout);
  std::fwrite(text.data(), 1, text.size(), stderr);
  throw ProgramEnd{1};
}

}  // namespace tapforge

#include "shell/options.h"

#include <cerrno>
#include <cstdlib>
#include <utility>

namespace tapforge {

const std::string_view kRuleLine =
    "\t===========================================================================";

std::optional<std::string> ArgCursor::value() {
  if (atEnd()) return std::nullopt;
  return arguments_[next_++];
}

std::optional<std::string> ArgCursor::option() {
  if (atEnd() || arguments_[next_][0] != '-') return std::nullopt;
  std::string name = arguments_[next_++] + 1;
  for (char& c : name) c = toLower(c);
  return name;
}

std::optional<std::string> ArgCursor::fileName() {
  if (atEnd() || arguments_[next_][0] == '-') return std::nullopt;
  return arguments_[next_++];
}

void refuse(const Reporter& report, std::string_view text) {
  refuseText(concat(report.dialect().toolName, ": ", text));
}

void refuseText(std::string_view text) {
  std::fflush(stdout);
  std::fwrite(text.data(), 1, text.size(), stderr);
  throw ProgramEnd{1};
}

void warnInvalidNumber(std::string_view value, std::string_view option, Reporter& report) {
  const std::string_view word = option == "linenum" ? "" : " option";
  report.warning(concat("invalid decimal number [", value, "] for -", option, word, "\n"),
                 Where::nowhere);
}

std::optional<int> numberValue(ArgCursor& args, std::string_view option, Reporter& report) {
  const std::optional<std::string> text = args.value();
  if (!text) {
    report.warning(concat("expected a decimal number for \"-", option, "\"\n"), Where::nowhere);
    return std::nullopt;
  }
  char* end = nullptr;
  const unsigned long number = std::strtoul(text->c_str(), &end, 0);
  if (end == text->c_str() || *end != '\0') {
    warnInvalidNumber(*text, option, report);
    return std::nullopt;
  }
  return static_cast<int>(static_cast<unsigned>(number));
}

bool takeNumber(ArgCursor& args, std::string_view option, long& variable, Shell& shell) {
  const std::optional<int> number = numberValue(args, option, shell.report);
  if (number) variable = *number;
  return number.has_value();
}

long decimalArgument(ArgCursor& args, std::string_view missing, const Reporter& report) {
  const std::optional<std::string> text = args.value();
  if (!text) refuse(report, missing);
  return std::strtol(text->c_str(), nullptr, 10);
}

std::string fileNameArgument(ArgCursor& args, std::string_view what, Reporter& report) {
  std::optional<std::string> name = args.value();
  if (!name) report.fatal(concat("missing [", what, "] filename"), Where::nowhere);
  return *std::move(name);
}

void refuseInputAsOutput(const std::string& name, const Shell& shell) {
  for (std::size_t i = 0; i < shell.inputs.size(); ++i) {
    const std::string& input = shell.inputs[i].name;
    if ((i == 0 && input == name) || sameRegularFile(input, name)) {
      shell.report.fileError("Output filename same as input");
    }
  }
}

void refuseOutputAsInput(const std::string& name, const Shell& shell) {
  bool same =
      shell.outputName && (*shell.outputName == name || sameRegularFile(*shell.outputName, name));
  for (const OutputFile* output :
       {shell.pFC_Output.get(), shell.pFC_Ascii.get(), shell.pFC_Log.get()}) {
    if (output != nullptr) same = same || sameRegularFile(output->name(), name);
  }
  if (same) shell.report.fileError("Input filename same as output");
}

std::unique_ptr<OutputFile> createFile(const std::string& name, Shell& shell) {
  refuseInputAsOutput(name, shell);
  // Two outputs into one file would overwrite each other without a word; so
  // would an output and the messages.
  bool taken = sameRegularFile("/dev/stdout", name) || sameRegularFile("/dev/stderr", name);
  for (const OutputFile* other :
       {shell.pFC_Output.get(), shell.pFC_Ascii.get(), shell.pFC_Log.get()}) {
    taken = taken || (other != nullptr && sameRegularFile(other->name(), name));
  }
  if (taken) shell.report.fileError(concat("[", name, "] is already written by this run"));
  const OpenMode mode = shell.iOverWritePrompt ? OpenMode::createAsking : OpenMode::create;
  return std::make_unique<OutputFile>(fileCheck(name, mode, shell.report), name, shell.report);
}

void takeLogFile(ArgCursor& args, Shell& shell) {
  shell.report.setLog(nullptr);
  shell.pFC_Log.reset();
  shell.pFC_Log = createFile(fileNameArgument(args, "LogFile", shell.report), shell);
  shell.report.setLog(shell.pFC_Log.get());
}

void takeOptionKey(ArgCursor& args, Shell& shell) {
  if (decimalArgument(args, "specify option key", shell.report) % 2 != 0) {
    shell.report.setScreen(true);
  }
}

}  // namespace tapforge

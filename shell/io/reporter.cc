#include "shell/io/reporter.h"

#include <array>
#include <cstdio>

#include "shell/io/output_file.h"
#include "shell/io/text.h"

namespace tapforge {
namespace {

constexpr std::size_t kMaxMessage = 299;

std::string_view prefixOf(Level level) {
  switch (level) {
    case Level::error:
      return "Error  : ";
    case Level::warning:
      return "Warning: ";
    case Level::note:
      return "Note   : ";
    case Level::plain:
      break;
  }
  return "";
}

std::string twoDigits(long value) {
  std::string text = std::to_string(value);
  return text.size() < 2 ? "0" + text : text;
}

}  // namespace

void Reporter::errHandler(Level level, std::string_view text, Where where) {
  std::string message = concat("\n", prefixOf(level), text.substr(0, kMaxMessage));
  if (where == Where::input && input_ != nullptr) message += input_->positionText();
  // Standard output first: when the log cannot take the message either, the
  // user has still seen it.
  print(message);
  toLog(message);
  if (level != Level::error) return;
  ending_ = true;
  finishClock();
  finishRun();
}

void Reporter::fatal(std::string_view text, Where where) {
  errHandler(Level::error, text, where);
  throw ProgramEnd{1};  // not reached: errHandler does not return from an error
}

void Reporter::fileError(std::string_view text) {
  fatal(concat("(", dialect_.toolName, ") ", text), Where::nowhere);
}

void Reporter::chkFileErr(std::string_view fileName) {
  const std::string text = concat(fileName, " file error");
  if (!ending_) fatal(text, Where::nowhere);
  const std::string message =
      concat("\n", prefixOf(Level::error), std::string_view(text).substr(0, kMaxMessage));
  print(message);
  toLog(message);
}

void Reporter::statusMsg(std::string_view text, StatusStyle style, bool toScreen, bool toLogFile) {
  const bool lineBefore = style == StatusStyle::newLine || style == StatusStyle::ownLine;
  const bool lineAfter = style == StatusStyle::ownLine || style == StatusStyle::line;
  if (toLogFile && log_ != nullptr) {
    toLog(concat(lineBefore ? "\n" : "", text, lineAfter ? "\n" : ""));
  }
  if (!toScreen || !screenOn_) return;
  std::string line;
  if (lineBefore) line += '\n';
  if (style == StatusStyle::rewind) line += dialect_.screenRewind;
  line += text;
  if (lineAfter) line += '\n';
  if (style == StatusStyle::wipe) line += dialect_.screenWipe;
  printStatus(line);
}

void Reporter::startClock() {
  t_TimeStart = std::time(nullptr);
  showDateTime(dialect_.startLabel, t_TimeStart);
}

void Reporter::finishClock() {
  const std::time_t now = std::time(nullptr);
  showDateTime(dialect_.finishLabel, now);
  if (t_TimeStart == 0) {
    statusMsg(" ", StatusStyle::ownLine, false, true);
    return;
  }
  const auto seconds = static_cast<long>(std::difftime(now, t_TimeStart));
  statusMsg(
      concat(dialect_.elapsedLead, twoDigits(seconds / 3600), ":", twoDigits(seconds % 3600 / 60),
             ":", twoDigits(seconds % 60), dialect_.elapsedTail),
      StatusStyle::line);
}

void Reporter::showDateTime(std::string_view label, std::time_t now) {
  std::array<char, 50> text{};
  if (const std::tm* local = std::localtime(&now); local != nullptr) {
    // The layout of ctime without its line end.
    std::strftime(text.data(), text.size(), "%a %b %e %H:%M:%S %Y", local);
  }
  statusMsg(concat(label, ": ", text.data()), StatusStyle::ownLine);
}

void Reporter::toLog(std::string_view text) {
  if (log_ != nullptr) log_->write(text);
}

void Reporter::print(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stdout); }

void Reporter::printStatus(std::string_view text) {
  // Both streams often lead to one terminal or file: keep their order.
  std::fflush(stdout);
  std::fwrite(text.data(), 1, text.size(), stderr);
}

}  // namespace tapforge

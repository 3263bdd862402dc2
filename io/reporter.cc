#include "io/reporter.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "io/output_file.h"
#include "io/text.h"

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
  }
  return "";
}

std::string twoDigits(std::int64_t value) { return paddedDecimal(value, 2, '0'); }

// As in "Mon Nov 26 03:03:39 2018".
std::string dateTimeText(std::time_t time) {
  const std::tm* local = std::localtime(&time);
  if (local == nullptr) return "";
  std::array<char, 20> day{};
  std::array<char, 20> clockAndYear{};
  std::strftime(day.data(), day.size(), "%a %b ", local);
  std::strftime(clockAndYear.data(), clockAndYear.size(), " %H:%M:%S %Y", local);
  // Some systems know no "%e".
  return concat(day.data(), paddedDecimal(local->tm_mday, 2), clockAndYear.data());
}

}  // namespace

std::string fileErrorText(std::string_view fileName) { return concat(fileName, " file error"); }

void Reporter::errHandler(Level level, std::string_view text, Where where) {
  const auto place = [&] {
    if (input_ == nullptr) return std::string();
    return where == Where::input ? input_->positionText() : input_->statementText();
  };
  if (!collects_ || level != Level::warning) return message(level, text, place());
  const auto known = std::find_if(kept_.begin(), kept_.end(),
                                  [text](const Kept& kept) { return kept.text == text; });
  if (known == kept_.end()) {
    kept_.push_back({std::string(text), place(), 1});
  } else {
    ++known->count;
  }
}

void Reporter::message(Level level, std::string_view text, std::string_view place) {
  const std::string whole = concat("\n", prefixOf(level), text.substr(0, kMaxMessage), place);
  // Standard output first: when the log cannot take the message, the user has
  // still seen it.
  print(whole);
  toLog(whole);
}

void Reporter::printFatal(std::string_view text, Where where) {
  printWarnings();
  errHandler(Level::error, text, where);
  printFinish();
}

void Reporter::fileError(std::string_view text) {
  fatal(concat("(", style_.toolName, ") ", text), Where::nowhere);
}

void Reporter::sendStatus(std::string_view text, StatusStyle style) {
  if (!wantsStatus()) return;
  const bool lineBefore = style == StatusStyle::newLine || style == StatusStyle::ownLine;
  const bool lineAfter = style == StatusStyle::ownLine || style == StatusStyle::line;
  const std::string line = concat(lineBefore ? "\n" : "", text, lineAfter ? "\n" : "");
  toLog(line);
  if (!iDbg_SCR_ACTIVITY_) return;
  printStatus(concat(style == StatusStyle::rewind ? style_.screenRewind : "", line,
                     style == StatusStyle::wipe ? style_.screenWipe : ""));
}

void Reporter::printWarnings() {
  for (const Kept& warning : std::exchange(kept_, {})) {
    const std::string times = warning.count > 1 ? concat(" (", warning.count, " times)") : "";
    message(Level::warning, concat(warning.text, times), warning.place);
  }
}

void Reporter::printFinish() {
  printWarnings();
  const std::time_t t_TimeFinish = showDateTime(style_.finishLabel);
  if (t_TimeStart_ != 0) {
    showElapsedTime(t_TimeFinish);
  } else {
    // No elapsed time: a line with nothing but a blank keeps its place.
    toLog("\n \n");
  }
}

std::time_t Reporter::showDateTime(std::string_view label) {
  const std::time_t t_SysDateTime = std::time(nullptr);
  sendStatus(concat(label, ": ", dateTimeText(t_SysDateTime)), StatusStyle::ownLine);
  return t_SysDateTime;
}

void Reporter::showElapsedTime(std::time_t t_TimeFinish) {
  const auto seconds = static_cast<std::int64_t>(std::difftime(t_TimeFinish, t_TimeStart_));
  sendStatus(
      concat(style_.elapsedLead, twoDigits(seconds / 3600), ":", twoDigits(seconds % 3600 / 60),
             ":", twoDigits(seconds % 60), style_.elapsedTail),
      StatusStyle::line);
}

void Reporter::toLog(std::string_view text) {
  if (log_ == nullptr) return;
  try {
    log_->write(text);
  } catch (const WriteFailed& failed) {
    log_ = nullptr;
    logLost_ = true;
    errHandler(Level::error, fileErrorText(failed.name), Where::nowhere);
  }
}

void Reporter::print(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stdout); }

void Reporter::printStatus(std::string_view text) {
  // Both streams often lead to one terminal or file: keep their order.
  std::fflush(stdout);
  std::fwrite(text.data(), 1, text.size(), stderr);
}

}  // namespace tapforge

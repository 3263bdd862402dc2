#include "svf/pio.h"

#include <string>
#include <unordered_set>
#include <utility>

#include "io/text.h"
#include "svf/char_class.h"

namespace tapforge {
namespace {

constexpr std::string_view kMapFormat = "Unknown/outdated PIOMAP data format";

PinDirection readDirection(FileChannel& channel) {
  if (channel.is("in")) return PinDirection::in;
  if (channel.is("out")) return PinDirection::out;
  if (channel.is("inout")) return PinDirection::inout;
  channel.report().fatal(kMapFormat);
}

void checkPin(char value, PinDirection direction, Reporter& report) {
  // H, L and Z are driven, so not on an output; U, D and X are expected, so not on
  // an input.
  const bool drives = value == 'H' || value == 'L' || value == 'Z';
  if (drives && direction == PinDirection::out) report.fatal("Incorrect output pin data");
  if (!drives && direction == PinDirection::in) report.fatal("Incorrect input pin data");
}

}  // namespace

PioMap readPioMap(FileChannel& channel, std::string& asWritten) {
  Reporter& report = channel.report();
  PioMap map;
  std::unordered_set<std::string> names;
  channel.strSearch("(");
  while (!channel.lexIs(")")) {
    map.push_back(readDirection(channel));
    if (!asWritten.empty()) asWritten += ' ';
    asWritten.append(channel.tokenAsWritten()).append(" ");
    channel.lex();
    if (channel.type() != TokenType::word) report.fatal(kMapFormat);
    asWritten += channel.tokenAsWritten();
    std::string name = channel.tokenLower();
    const std::string message = concat("[", name, "] already defined");
    if (!names.insert(std::move(name)).second) {
      report.warning(message, Where::nowhere);
      report.fatal("Invalid PIOMAP data");
    }
  }
  channel.strSearch(";");
  return map;
}

void readPio(const PioMap& map, FileChannel& channel, std::string& asWritten) {
  Reporter& report = channel.report();
  if (map.empty() && channel.rules().exact) report.fatal("No PIOMAP defined");
  if (map.empty()) {
    report.warning("No PIOMAP defined; skipping data");
    channel.skipUntil(";");
    return;
  }
  channel.strSearch("(");
  std::size_t pin = 0;
  for (int c = channel.getFChanChar(); c != ')'; c = channel.getFChanChar()) {
    const bool blank = isSpace(static_cast<unsigned char>(c));
    asWritten += blank ? ' ' : static_cast<char>(c);
    if (blank) continue;
    const char value = toUpper(static_cast<char>(c));
    if (std::string_view("HLZUDX").find(value) == std::string_view::npos) {
      report.fatal("Unexpected PIO char");
    }
    if (pin == map.size()) {
      report.fatal(concat("PIO char count != count in last PIOMAP (", map.size(), ")"));
    }
    checkPin(value, map[pin++], report);
  }
  channel.strSearch(";");
}

}  // namespace tapforge

#include "svf/pio.h"

#include <string>
#include <unordered_set>
#include <vector>

#include "shell/io/text.h"
#include "svf/char_class.h"

namespace tapforge {
namespace {

constexpr std::string_view kMapFormat = "Unknown/outdated PIOMAP data format";

PinDirection directionNamed(Run& run) {
  if (run.lexer.is("in")) return PinDirection::in;
  if (run.lexer.is("out")) return PinDirection::out;
  if (run.lexer.is("inout")) return PinDirection::inout;
  run.report.fatal(kMapFormat);
}

void checkPin(char value, PinDirection direction, Reporter& report) {
  // H, L and Z drive a pin; U, D and X are what is expected on it.
  const bool drives = value == 'H' || value == 'L' || value == 'Z';
  if (drives && direction == PinDirection::out) report.fatal("Incorrect output pin data");
  if (!drives && direction == PinDirection::in) report.fatal("Incorrect input pin data");
}

}  // namespace

void readPioMap(Run& run) {
  std::vector<PinDirection>& map = run.tap.pPioMap;
  map.clear();
  std::unordered_set<std::string> names;
  run.lexer.strSearch("(");
  while (!run.lexer.lexIs(")")) {
    map.push_back(directionNamed(run));
    run.lexer.lex();
    const std::string_view name = run.lexer.token();
    if (run.lexer.type() != TokenType::word) run.report.fatal(kMapFormat);
    if (!names.emplace(name).second) {
      run.report.warning(concat("[", name, "] already defined"), Where::nowhere);
      run.report.fatal("Invalid PIOMAP data");
    }
  }
  run.lexer.strSearch(";");
}

void readPio(Run& run) {
  const std::vector<PinDirection>& map = run.tap.pPioMap;
  if (map.empty()) {
    run.report.warning("No PIOMAP defined; skipping data");
    run.lexer.skipUntil(";");
    return;
  }
  run.lexer.strSearch("(");
  SourceReader& source = run.lexer.source();
  std::size_t pin = 0;
  for (int c = source.nextRaw(); c != ')'; c = source.nextRaw()) {
    if (isSpace(static_cast<unsigned char>(c))) continue;
    const char value = toUpper(static_cast<char>(c));
    if (std::string_view("HLZUDX").find(value) == std::string_view::npos) {
      run.report.fatal("Unexpected PIO char");
    }
    if (pin == map.size()) {
      run.report.fatal(concat("PIO char count != count in last PIOMAP (", map.size(), ")"));
    }
    checkPin(value, map[pin++], run.report);
  }
  run.lexer.strSearch(";");
}

}  // namespace tapforge

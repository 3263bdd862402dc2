#include "script/script_writer.h"

#include <algorithm>

#include "shell/io/text.h"
#include "svf/char_class.h"

namespace progmode_svf2tapbus {

using tapforge::concat;
using tapforge::truncated;
using namespace std::string_view_literals;

void CommentCopier::beginComment(std::string_view text) {
  if (vars_.iGlobOutFormat) output_.write("#-");
  output_.write(text);
}

void ScriptWriter::writeStatement() {
  output_.write(sBufStatement_.view());
  sBufStatement_.clear();
  writeSeparator();
}

void ScriptWriter::writeSeparator() {
  const std::string_view rest = source_.restOfLine();
  const auto* const next = std::find_if_not(rest.begin(), rest.end(), [](char c) {
    return tapforge::isSpace(static_cast<unsigned char>(c));
  });
  if (next == rest.end()) {
    output_.put('\n');
    return;
  }
  const auto blanks = static_cast<std::size_t>(next - rest.begin());
  output_.write(std::string(std::max<std::size_t>(blanks, 1), ' '));
}

void ScriptWriter::writeLine() {
  output_.write(sBufStatement_.view());
  output_.put('\n');
  sBufStatement_.clear();
}

void ScriptWriter::lineMarker(long line) {
  output_.write(concat("puts \"--- line ", line, "\"\n"));
}

void ScriptWriter::endStateStatement(ScanRegister which, TapState state) {
  const std::string_view scan = which == ScanRegister::instruction ? "IR" : "DR";
  const std::string name = tapforge::xToUpper(tapforge::getTapStateName(state));
  if (isTcl()) {
    sBufStatement_ = concat("set_property ENDSTATE_", scan, " {", name, "} $current_tapbus");
  } else {
    sBufStatement_ = concat("END", scan, " ", name, " ;");
  }
  writeStatement();
}

void ScriptWriter::beginState() { sBufStatement_ = isTcl() ? "run_state_tapbus" : "STATE"; }

void ScriptWriter::pathState(std::string_view asWritten) {
  sBufStatement_ += ' ';
  sBufStatement_ += asWritten;
}

void ScriptWriter::endOfState() {
  if (!isTcl()) sBufStatement_ += " ;";
  writeStatement();
}

void ScriptWriter::frequency(float hertz) {
  sBufStatement_ = isTcl() ? "# FREQUENCY" : "FREQUENCY";
  if (hertz > 0) sBufStatement_ += concat(" ", truncated(hertz), " Hz");
  sBufStatement_ += " ;";
  writeStatement();
}

void ScriptWriter::beginTrst(std::string_view modeAsWritten) {
  sBufStatement_ = concat(isTcl() ? "# TRST " : "TRST ", modeAsWritten, " ;");
}

void ScriptWriter::beginRunTest() { sBufStatement_ = isTcl() ? "runtest_tapbus"sv : "RUNTEST"sv; }

void ScriptWriter::runState(std::string_view name) {
  sBufStatement_ += isTcl() ? " -wait " : " ";
  sBufStatement_ += name;
}

void ScriptWriter::runCount(long count, std::string_view unit) {
  if (isTcl()) {
    splitWait(count);
  } else {
    sBufStatement_ += ' ';
    sBufStatement_.appendDecimal(count);
    sBufStatement_ += ' ';
    sBufStatement_ += unit;
  }
}

void ScriptWriter::minTime(float seconds) {
  if (isTcl()) {
    splitWait(truncated(static_cast<float>(vars_.lGlobTckFreq) * seconds));
  } else {
    sBufStatement_ += concat(" ", tapforge::shortExponent(seconds), " sec");
  }
}

void ScriptWriter::maxTime(float seconds) {
  if (isTcl()) report_.fatal("RUNTEST MAXIMUM not supported in tapbus mode");
  sBufStatement_ += concat(" MAXIMUM ", tapforge::shortExponent(seconds), " sec");
}

void ScriptWriter::endState(std::string_view name) {
  sBufStatement_ += isTcl() ? " -end_state " : " ENDSTATE ";
  sBufStatement_ += name;
}

void ScriptWriter::endOfRunTest() {
  if (!isTcl()) sBufStatement_ += " ;";
  writeStatement();
}

// A console command waits at most so many clocks: all but the last command of
// a longer wait go out at once, and what the statement adds joins the last.
void ScriptWriter::splitWait(long clocks) {
  const long most = vars_.lGlobOptMaxRtiTck;
  while (clocks > most) {
    sBufStatement_ += concat(" -tck ", most);
    writeLine();
    sBufStatement_ = "runtest_tapbus";
    clocks -= most;
  }
  sBufStatement_ += " -tck ";
  sBufStatement_.appendDecimal(clocks);
}

}  // namespace progmode_svf2tapbus

#include "script/script_mode.h"

#include "io/text.h"

namespace tapforge::progmode_svf2tapbus {
namespace {

// File, line and last item, the source line and, where the token begins on that
// line, a mark under it.
std::string positionText(const SourcePlace& place) {
  std::string text = concat("\nFile [", place.sFileName, "]\tLine ", place.lLineNum,
                            " (last item read [", place.sLastItem, "]):\n", place.sSrcLine, "\n");
  const auto column = static_cast<std::size_t>(place.iTokenCol);
  if (column < place.sSrcLine.size()) {
    for (const char c : place.sSrcLine.substr(0, column)) text += c == '\t' ? '\t' : ' ';
    text += "^*\n";
  }
  if (place.statementLine > 0) text += concat(kStatementLine, place.statementLine, "\n");
  return text;
}

}  // namespace

const MessageStyle kMessageStyle = {
    .toolName = "svf2tapbus",
    .startLabel = "Start ",
    .finishLabel = "Finish",
    .elapsedLead = "     Elapsed time (",
    .elapsedTail = ")\t",
    .screenRewind = "\r",
    // A carriage return and 58 blanks.
    .screenWipe = "\r                                                          ",
};

const SyntaxRules kSyntaxRules = {
    .positionText = positionText,
    .numberTooLong = {"Beyond max number width [", "]"},
    .tokenMissing = {"Expecting [", "]"},
    .endOfFile = "Unexpected EOF",
    .endOfFileHasPosition = true,
    .lineEnds = LineEnds::lineFeedOrReturn,
    .linesAreCut = true,
    .slashIsToken = true,
    .blankIsItem = false,
    .hexEndsWithFile = false,
    .timesBecomeCounts = false,
    .pathErrorNamesState = false,
};

}  // namespace tapforge::progmode_svf2tapbus

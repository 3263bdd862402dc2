#include "vector/ksvf_mode.h"

#include "io/text.h"

namespace tapforge::progmode_svf2ksvf {
namespace {

// File, line and last item.
std::string positionText(const SourcePlace& place) {
  const std::string text =
      concat("\n[", place.sFileName, ": line ", place.lLineNum, "]:[", place.sLastItem, "]");
  return place.statementLine > 0 ? concat(text, "\n", kStatementLine, place.statementLine) : text;
}

// A carriage return, 79 blanks and a carriage return.
constexpr std::string_view kClearLine =
    "\r                                        "
    "                                       \r";

}  // namespace

const MessageStyle kMessageStyle = {
    .toolName = "svf2ksvf",
    .startLabel = "Start  ",
    .finishLabel = "Finish ",
    .elapsedLead = "      Elapsed Time (",
    .elapsedTail = ")",
    .screenRewind = kClearLine,
    .screenWipe = kClearLine,
};

const SyntaxRules kSyntaxRules = {
    .positionText = positionText,
    .numberTooLong = {"number exceeds [", "] digits"},
    .tokenMissing = {"Token [", "] not found"},
    .endOfFile = "EOF_CH",
    .endOfFileHasPosition = false,
    .lineEnds = LineEnds::lineFeed,
    .linesAreCut = false,
    .slashIsToken = false,
    .blankIsItem = true,
    .hexEndsWithFile = true,
    .timesBecomeCounts = true,
    .pathErrorNamesState = true,
};

}  // namespace tapforge::progmode_svf2ksvf

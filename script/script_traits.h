#ifndef TAPFORGE_SCRIPT_SCRIPT_TRAITS_H
#define TAPFORGE_SCRIPT_SCRIPT_TRAITS_H

#include "shell/io/reporter.h"
#include "svf/syntax_rules.h"

namespace progmode_svf2tapbus {

inline constexpr tapforge::MessageStyle kMessageStyle = {
    .toolName = "svf2tapbus",
    .startLabel = "Start ",
    .finishLabel = "Finish",
    .elapsedLead = "     Elapsed time (",
    .elapsedTail = ")\t",
    .screenRewind = "\r",
    // A carriage return and 58 blanks.
    .screenWipe = "\r                                                          ",
};

inline constexpr tapforge::SyntaxRules kSyntaxRules = {
    .numberTooLong = "Beyond max number width [30]",
    .tokenMissing = {"Expecting [", "]"},
    .endOfFile = "Unexpected EOF",
    .endOfFileHasPosition = true,
    .blankEndsWord = true,
    .blankIsItem = false,
    .hexEndsWithFile = false,
    .timesNeedFrequency = false,
};

}  // namespace progmode_svf2tapbus

#endif  // TAPFORGE_SCRIPT_SCRIPT_TRAITS_H

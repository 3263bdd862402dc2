#ifndef TAPFORGE_VECTOR_KSVF_TRAITS_H
#define TAPFORGE_VECTOR_KSVF_TRAITS_H

#include "shell/io/reporter.h"
#include "svf/syntax_rules.h"

namespace progmode_svf2ksvf {

inline constexpr tapforge::MessageStyle kMessageStyle = {
    .toolName = "svf2ksvf",
    .startLabel = "Start  ",
    .finishLabel = "Finish ",
    .elapsedLead = "      Elapsed Time (",
    .elapsedTail = ")",
    // A carriage return, 79 blanks and a carriage return.
    .screenRewind =
        "\r                                        "
        "                                       \r",
    .screenWipe =
        "\r                                        "
        "                                       \r",
};

inline constexpr tapforge::SyntaxRules kSyntaxRules = {
    .numberTooLong = "number exceeds [30] digits",
    .tokenMissing = {"Token [", "] not found"},
    .endOfFile = "EOF_CH",
    .endOfFileHasPosition = false,
    .blankEndsWord = false,
    .blankIsItem = true,
    .hexEndsWithFile = true,
    .timesNeedFrequency = true,
};

}  // namespace progmode_svf2ksvf

#endif  // TAPFORGE_VECTOR_KSVF_TRAITS_H

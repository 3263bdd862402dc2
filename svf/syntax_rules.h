#ifndef TAPFORGE_SVF_SYNTAX_RULES_H
#define TAPFORGE_SVF_SYNTAX_RULES_H

#include <string_view>

namespace tapforge {

/// Where the modes read SVF differently. A constant of it exists in each mode's
/// namespace.
struct SyntaxRules {
  std::string_view numberTooLong;
  std::string_view tokenMissing[2];  // around the expected token
  std::string_view endOfFile;
  bool endOfFileHasPosition;
  bool blankEndsWord;       // white space after a word is consumed with it
  bool blankIsItem;         // white space and comments count as "last item read"
  bool hexEndsWithFile;     // a hex value cut off by the end of the file ends quietly
  bool timesNeedFrequency;  // RUNTEST waits are clock counts; a time must be converted
};

}  // namespace tapforge

#endif  // TAPFORGE_SVF_SYNTAX_RULES_H

#ifndef TAPFORGE_SHELL_IO_DIALECT_H
#define TAPFORGE_SHELL_IO_DIALECT_H

#include <string_view>

namespace tapforge {

/// What the two program modes say differently where they do the same. One
/// constant of it exists in each mode's namespace.
struct Dialect {
  std::string_view toolName;

  // Start, finish and elapsed time.
  std::string_view startLabel;
  std::string_view finishLabel;
  std::string_view elapsedLead;
  std::string_view elapsedTail;

  // Progress on the console: what goes before a line that replaces the last
  // one, and what wipes the last one away.
  std::string_view screenRewind;
  std::string_view screenWipe;

  // The overwrite prompt: an empty answer consumes the following line too.
  bool emptyAnswerTakesNext;

  // Tokens.
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

#endif  // TAPFORGE_SHELL_IO_DIALECT_H

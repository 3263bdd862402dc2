#ifndef TAPFORGE_SVF_SYNTAX_RULES_H
#define TAPFORGE_SVF_SYNTAX_RULES_H

#include <cstdint>
#include <string>
#include <string_view>

namespace tapforge {

/// Which characters end a line: only a line feed, or a carriage return as well.
enum class LineEnds { lineFeed, lineFeedOrReturn };

/// A place in the source, as messages show it.
struct SourcePlace {
  std::string_view sFileName;
  std::int64_t lLineNum;       // the first line is 1
  std::string_view sLastItem;  // the token or character read last, as written
  std::string_view sSrcLine;   // where lines are cut, the segment that was read last
  std::int64_t iTokenCol;      // of the last token in sSrcLine, from 0
  std::int64_t statementLine;  // the line that the statement begins in; 0: not told
};

inline constexpr std::string_view kStatementLine = "The statement begins in line ";

/// The ways in which the two program modes read SVF differently. Each mode has
/// one constant of it.
struct SyntaxRules {
  /// The lines that follow a message's text and tell its place.
  std::string (*positionText)(const SourcePlace& place);

  /// The texts before and after the limit in the message about a number or
  /// digit-led word that is too long, and before and after a token that was expected.
  std::string_view numberTooLong[2];
  std::string_view tokenMissing[2];
  std::string_view endOfFile;  // something was to be read past the end
  bool endOfFileHasPosition;

  /// What ends a line: for line numbers, comments and cut lines.
  LineEnds lineEnds;
  /// -exact: numbers keep all their digits and stand in one piece, a value has
  /// digits, messages also tell where the statement begins, and CR LF is one line.
  bool exact = false;
  /// Lines are read in segments of at most FileChannel::kMaxLine characters. Messages
  /// show such a segment, and a line end or the end of the file in a value as a blank.
  bool linesAreCut;
  /// A "/" that begins no comment is a token. If not, it is lost, and the
  /// character after it is a token by itself.
  bool slashIsToken;
  /// White space and comments count as the last item read.
  bool blankIsItem;
  /// A hex value that the end of the file cuts off ends without a message.
  bool hexEndsWithFile;
  /// A RUNTEST number with any unit but TCK is a time that has to become clocks.
  bool timesBecomeCounts;
  /// The message about a path with a step that takes more than one clock names the
  /// state before that step.
  bool pathErrorNamesState;
};

}  // namespace tapforge

#endif  // TAPFORGE_SVF_SYNTAX_RULES_H

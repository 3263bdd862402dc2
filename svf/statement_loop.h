#ifndef TAPFORGE_SVF_STATEMENT_LOOP_H
#define TAPFORGE_SVF_STATEMENT_LOOP_H

#include "svf/file_channel.h"
#include "svf/keyword.h"

namespace tapforge {

/// Calls the function of `mode` for a statement whose keyword was read.
template <typename Mode>
void doStatement(Keyword keyword, Mode& mode) {
  switch (keyword) {
    case Keyword::hir:
    case Keyword::hdr:
    case Keyword::tir:
    case Keyword::tdr:
    case Keyword::sir:
    case Keyword::sdr:
      return mode.doScan(keyword);
    case Keyword::runtest:
      return mode.doRunTest();
    case Keyword::state:
      return mode.doState();
    case Keyword::endir:
    case Keyword::enddr:
      return mode.doEndState(registerOf(keyword));
    case Keyword::frequency:
      return mode.doFrequency();
    case Keyword::trst:
      return mode.doTrst();
    case Keyword::piomap:
      return mode.doPioMap();
    case Keyword::pio:
      return mode.doPio();
    case Keyword::unknown:
      return;
  }
}

/// Reads a file to its end: calls `mode.beforeKeyword()`, reads a keyword, calls
/// `mode.afterKeyword()` and does the statement, which reads its rest. False when a
/// keyword was unknown, and its statement left out.
template <typename Mode>
bool doStatements(FileChannel& channel, Mode& mode) {
  bool allKnown = true;
  for (;;) {
    mode.beforeKeyword();
    if (!channel.lexKeyword()) return allKnown;
    mode.afterKeyword();
    const Keyword keyword = keywordOf(channel);
    if (keyword == Keyword::unknown) {
      allKnown = skipUnknown(channel) && allKnown;
    } else {
      doStatement(keyword, mode);
    }
  }
}

}  // namespace tapforge

#endif  // TAPFORGE_SVF_STATEMENT_LOOP_H

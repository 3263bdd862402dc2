#ifndef TAPFORGE_SVF_STATEMENTS_H
#define TAPFORGE_SVF_STATEMENTS_H

#include "svf/run.h"

namespace tapforge {

enum class Keyword {
  unknown,
  endir,
  enddr,
  frequency,
  hir,
  hdr,
  sir,
  sdr,
  tir,
  tdr,
  pio,
  piomap,
  runtest,
  state,
  trst
};

/// The statement that the current token begins.
Keyword keywordOf(const Lexer& lexer);

/// The pattern that a scan statement (HIR to TDR) is about, and the register
/// that it belongs to.
CTapPattern& patternOf(Keyword scan, CTapObj& tap);
RegisterPatterns& registerOf(Keyword scan, CTapObj& tap);
bool isDataScan(Keyword scan);

/// Puts what a scan statement read in force in its pattern; fatal "SVF rule violation"
/// when the pattern refuses it.
void storeScan(CTapPattern& pattern, const ScanData& data, Run& run);

/// Warns of an unknown keyword and reads its statement away. White space that a
/// lost "/" has made a token is passed over without a word, and gives true.
bool skipUnknown(Run& run);

}  // namespace tapforge

#endif  // TAPFORGE_SVF_STATEMENTS_H

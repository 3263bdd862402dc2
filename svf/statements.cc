#include "svf/statements.h"

#include "shell/io/text.h"
#include "svf/char_class.h"

namespace tapforge {
Keyword keywordOf(const Lexer& lexer) {
  // The most frequent ones first.
  if (lexer.is("sdr")) return Keyword::sdr;
  if (lexer.is("runtest")) return Keyword::runtest;
  if (lexer.is("sir")) return Keyword::sir;
  if (lexer.is("state")) return Keyword::state;
  if (lexer.is("endir")) return Keyword::endir;
  if (lexer.is("enddr")) return Keyword::enddr;
  if (lexer.is("frequency")) return Keyword::frequency;
  if (lexer.is("hir")) return Keyword::hir;
  if (lexer.is("hdr")) return Keyword::hdr;
  if (lexer.is("tir")) return Keyword::tir;
  if (lexer.is("tdr")) return Keyword::tdr;
  if (lexer.is("pio")) return Keyword::pio;
  if (lexer.is("piomap")) return Keyword::piomap;
  if (lexer.is("trst")) return Keyword::trst;
  return Keyword::unknown;
}

bool isDataScan(Keyword scan) {
  return scan == Keyword::hdr || scan == Keyword::sdr || scan == Keyword::tdr;
}

RegisterPatterns& registerOf(Keyword scan, CTapObj& tap) {
  return isDataScan(scan) ? tap.data : tap.instruction;
}

CTapPattern& patternOf(Keyword scan, CTapObj& tap) {
  RegisterPatterns& patterns = registerOf(scan, tap);
  if (scan == Keyword::hir || scan == Keyword::hdr) return patterns.head;
  if (scan == Keyword::tir || scan == Keyword::tdr) return patterns.trail;
  return patterns.data;
}

void storeScan(CTapPattern& pattern, const ScanData& data, Run& run) {
  if (pattern.setPattern(data)) return;
  run.report.warning("TDI data required", Where::nowhere);
  run.report.fatal("SVF rule violation");
}

bool skipUnknown(Run& run) {
  if (isSpace(static_cast<unsigned char>(run.lexer.token().front()))) return true;
  run.report.warning(concat("Unknown SVF keyword [", run.lexer.token(), "]"));
  run.lexer.skipUntil(";");
  return false;
}

}  // namespace tapforge

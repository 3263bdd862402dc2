#include "svf/statements.h"

#include <array>

#include "shell/text.h"

namespace tapforge {
namespace {

struct Entry {
  std::string_view word;
  Keyword keyword;
};

// The most frequent ones first.
constexpr std::array<Entry, 14> kKeywords = {{{"sdr", Keyword::sdr},
                                              {"runtest", Keyword::runtest},
                                              {"sir", Keyword::sir},
                                              {"state", Keyword::state},
                                              {"endir", Keyword::endir},
                                              {"enddr", Keyword::enddr},
                                              {"frequency", Keyword::frequency},
                                              {"hir", Keyword::hir},
                                              {"hdr", Keyword::hdr},
                                              {"tir", Keyword::tir},
                                              {"tdr", Keyword::tdr},
                                              {"pio", Keyword::pio},
                                              {"piomap", Keyword::piomap},
                                              {"trst", Keyword::trst}}};

}  // namespace

Keyword keywordOf(std::string_view token) {
  for (const Entry& entry : kKeywords) {
    if (entry.word == token) return entry.keyword;
  }
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

void storeScan(CTapPattern& pattern, ScanValues& values, Run& run) {
  if (pattern.setPattern(values)) return;
  run.report.warning("TDI data required", Where::nowhere);
  run.report.fatal("SVF rule violation");
}

void skipUnknown(Run& run) {
  run.report.warning(cat("Unknown SVF keyword [", run.lexer.token(), "]"));
  run.lexer.skipUntil(";");
}

}  // namespace tapforge

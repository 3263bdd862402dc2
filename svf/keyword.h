#ifndef TAPFORGE_SVF_KEYWORD_H
#define TAPFORGE_SVF_KEYWORD_H

#include <cstdint>
#include <string_view>

#include "svf/file_channel.h"
#include "svf/tap_state.h"

namespace tapforge {

/// The statements of SVF.
enum class Keyword : std::uint8_t {
  unknown,
  hir,
  hdr,
  tir,
  tdr,
  sir,
  sdr,
  endir,
  enddr,
  frequency,
  pio,
  piomap,
  runtest,
  state,
  trst
};

/// The statement that the current token begins.
Keyword keywordOf(const FileChannel& channel);

/// The lower-case word.
std::string_view nameOf(Keyword keyword);

/// Whether the statement shifts data: SIR or SDR.
constexpr bool shiftsData(Keyword keyword) {
  return keyword == Keyword::sir || keyword == Keyword::sdr;
}

/// The register that a scan, header, trailer or end state statement is about.
constexpr ScanRegister registerOf(Keyword keyword) {
  const bool isData = keyword == Keyword::sdr || keyword == Keyword::hdr ||
                      keyword == Keyword::tdr || keyword == Keyword::enddr;
  return isData ? ScanRegister::data : ScanRegister::instruction;
}

/// The current token begins no statement: warns and reads on past the next ";".
/// White space, which is a token after a lost "/", is ignored silently. False
/// when something was skipped.
bool skipUnknown(FileChannel& channel);

}  // namespace tapforge

#endif  // TAPFORGE_SVF_KEYWORD_H

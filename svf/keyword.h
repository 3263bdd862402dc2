#ifndef TAPFORGE_SVF_KEYWORD_H
#define TAPFORGE_SVF_KEYWORD_H

#include <cstdint>
#include <string_view>

#include "svf/file_channel.h"
#include "svf/tap_state.h"

namespace tapforge {

/// The statements of SVF, the frequent ones first: keywordOf() looks in this order.
enum class Keyword : std::uint8_t {
  unknown,
  sdr,
  sir,
  runtest,
  state,
  hir,
  hdr,
  tir,
  tdr,
  endir,
  enddr,
  frequency,
  pio,
  piomap,
  trst
};

/// The statement that the current token begins.
Keyword keywordOf(const FileChannel& channel);

/// The word in lower case.
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

/// The current token begins no statement: warns and reads on past the next ";"; under
/// -exact it is fatal.
/// White space, which is a token after a lost "/", is ignored silently. False
/// when something was skipped.
bool skipUnknown(FileChannel& channel);

/// Calls the function of `mode` for the statement that the current token begins; it
/// reads the rest. False when the keyword is unknown, and its statement left out.
template <typename Mode>
bool doStatement(FileChannel& channel, Mode& mode) {
  const Keyword keyword = keywordOf(channel);
  switch (keyword) {
    case Keyword::hir:
    case Keyword::hdr:
    case Keyword::tir:
    case Keyword::tdr:
    case Keyword::sir:
    case Keyword::sdr:
      mode.doScan(keyword);
      break;
    case Keyword::runtest:
      mode.doRunTest();
      break;
    case Keyword::state:
      mode.doState();
      break;
    case Keyword::endir:
    case Keyword::enddr:
      mode.doEndState(registerOf(keyword));
      break;
    case Keyword::frequency:
      mode.doFrequency();
      break;
    case Keyword::trst:
      mode.doTrst();
      break;
    case Keyword::piomap:
      mode.doPioMap();
      break;
    case Keyword::pio:
      mode.doPio();
      break;
    case Keyword::unknown:
      return skipUnknown(channel);
  }
  return true;
}

}  // namespace tapforge

#endif  // TAPFORGE_SVF_KEYWORD_H

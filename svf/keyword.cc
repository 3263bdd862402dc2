#include "svf/keyword.h"

#include <array>

#include "io/text.h"
#include "svf/char_class.h"

namespace tapforge {
namespace {

// By Keyword.
constexpr std::array<Word, 15> kKeywords = {"",    "hir",    "hdr",     "tir",   "tdr",
                                            "sir", "sdr",    "endir",   "enddr", "frequency",
                                            "pio", "piomap", "runtest", "state", "trst"};

// The only keyword that can have this key; two with the same one do not compile.
constexpr Keyword keywordWithKey(std::uint64_t key) {
  switch (key) {
    case Word("hir").key:
      return Keyword::hir;
    case Word("hdr").key:
      return Keyword::hdr;
    case Word("tir").key:
      return Keyword::tir;
    case Word("tdr").key:
      return Keyword::tdr;
    case Word("sir").key:
      return Keyword::sir;
    case Word("sdr").key:
      return Keyword::sdr;
    case Word("endir").key:
      return Keyword::endir;
    case Word("enddr").key:
      return Keyword::enddr;
    case Word("frequency").key:
      return Keyword::frequency;
    case Word("pio").key:
      return Keyword::pio;
    case Word("piomap").key:
      return Keyword::piomap;
    case Word("runtest").key:
      return Keyword::runtest;
    case Word("state").key:
      return Keyword::state;
    case Word("trst").key:
      return Keyword::trst;
    default:
      return Keyword::unknown;
  }
}

constexpr bool agree() {
  for (std::size_t i = 0; i < kKeywords.size(); ++i) {
    if (keywordWithKey(kKeywords[i].key) != static_cast<Keyword>(i)) return false;
  }
  return true;
}
static_assert(agree());

}  // namespace

Keyword keywordOf(const FileChannel& channel) {
  const Keyword found = keywordWithKey(channel.key());
  return channel.is(kKeywords[static_cast<std::size_t>(found)]) ? found : Keyword::unknown;
}

std::string_view nameOf(Keyword keyword) {
  return kKeywords[static_cast<std::size_t>(keyword)].text;
}

bool skipUnknown(FileChannel& channel) {
  if (isSpace(static_cast<unsigned char>(channel.tokenAsWritten().front()))) return true;
  channel.report().warning(concat("Unknown SVF keyword [", channel.tokenLower(), "]"));
  channel.skipUntil(";");
  return false;
}

}  // namespace tapforge

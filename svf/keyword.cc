#include "svf/keyword.h"

#include <array>

#include "shell/io/text.h"
#include "svf/char_class.h"

namespace tapforge {
namespace {

// By Keyword. Each is told from all words by its first eight characters and its
// length.
constexpr std::array<Word, 15> kKeywords = {"",    "hir",    "hdr",     "tir",   "tdr",
                                            "sir", "sdr",    "endir",   "enddr", "frequency",
                                            "pio", "piomap", "runtest", "state", "trst"};
static_assert(kKeywords[static_cast<std::size_t>(Keyword::trst)].text == "trst");

constexpr std::uint64_t keyOf(Keyword keyword) {
  return kKeywords[static_cast<std::size_t>(keyword)].key;
}

Keyword keywordWithKey(std::uint64_t key) {
  switch (key) {
    case keyOf(Keyword::hir):
      return Keyword::hir;
    case keyOf(Keyword::hdr):
      return Keyword::hdr;
    case keyOf(Keyword::tir):
      return Keyword::tir;
    case keyOf(Keyword::tdr):
      return Keyword::tdr;
    case keyOf(Keyword::sir):
      return Keyword::sir;
    case keyOf(Keyword::sdr):
      return Keyword::sdr;
    case keyOf(Keyword::endir):
      return Keyword::endir;
    case keyOf(Keyword::enddr):
      return Keyword::enddr;
    case keyOf(Keyword::frequency):
      return Keyword::frequency;
    case keyOf(Keyword::pio):
      return Keyword::pio;
    case keyOf(Keyword::piomap):
      return Keyword::piomap;
    case keyOf(Keyword::runtest):
      return Keyword::runtest;
    case keyOf(Keyword::state):
      return Keyword::state;
    case keyOf(Keyword::trst):
      return Keyword::trst;
    default:
      return Keyword::unknown;
  }
}

}  // namespace

Keyword keywordOf(const FileChannel& channel) {
  const Keyword found = keywordWithKey(channel.key());
  const bool same = channel.is(kKeywords[static_cast<std::size_t>(found)]);
  return same ? found : Keyword::unknown;
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

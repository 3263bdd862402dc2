#include "svf/keyword.h"

#include <array>

#include "shell/io/text.h"
#include "svf/char_class.h"

namespace tapforge {
namespace {

using enum Keyword;

struct KeywordRow {
  Keyword keyword;
  Word word;
};

constexpr std::array kKeywords = std::to_array<KeywordRow>({
    {unknown, ""},
    {hir, "hir"},
    {hdr, "hdr"},
    {tir, "tir"},
    {tdr, "tdr"},
    {sir, "sir"},
    {sdr, "sdr"},
    {endir, "endir"},
    {enddr, "enddr"},
    {frequency, "frequency"},
    {pio, "pio"},
    {piomap, "piomap"},
    {runtest, "runtest"},
    {state, "state"},
    {trst, "trst"},
});
static_assert(rowsByNumber(kKeywords, &KeywordRow::keyword));

constexpr const Word& wordOf(Keyword keyword) {
  return kKeywords[static_cast<std::size_t>(keyword)].word;
}

constexpr std::uint64_t keyOf(Keyword keyword) { return wordOf(keyword).key; }

// The only keyword that can have this key. A table looked up by a remainder of the
// key took ten instructions more a statement.
Keyword keywordWithKey(std::uint64_t key) {
  switch (key) {
    case keyOf(hir):
      return hir;
    case keyOf(hdr):
      return hdr;
    case keyOf(tir):
      return tir;
    case keyOf(tdr):
      return tdr;
    case keyOf(sir):
      return sir;
    case keyOf(sdr):
      return sdr;
    case keyOf(endir):
      return endir;
    case keyOf(enddr):
      return enddr;
    case keyOf(frequency):
      return frequency;
    case keyOf(pio):
      return pio;
    case keyOf(piomap):
      return piomap;
    case keyOf(runtest):
      return runtest;
    case keyOf(state):
      return state;
    case keyOf(trst):
      return trst;
    default:
      return unknown;
  }
}

}  // namespace

Keyword keywordOf(const FileChannel& channel) {
  const Keyword found = keywordWithKey(channel.key());
  return channel.is(wordOf(found)) ? found : unknown;
}

std::string_view nameOf(Keyword keyword) { return wordOf(keyword).text; }

bool skipUnknown(FileChannel& channel) {
  if (isSpace(static_cast<unsigned char>(channel.tokenAsWritten().front()))) return true;
  channel.report().warning(concat("Unknown SVF keyword [", channel.tokenLower(), "]"));
  channel.skipUntil(";");
  return false;
}

}  // namespace tapforge

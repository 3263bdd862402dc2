#include "svf/keyword.h"

#include <array>

#include "io/text.h"
#include "svf/char_class.h"

namespace tapforge {
namespace {

struct KeywordRow {
  Keyword keyword;
  Word word;
};
constexpr std::array kKeywords = std::to_array<KeywordRow>({
    {Keyword::unknown, ""},
    {Keyword::sdr, "sdr"},
    {Keyword::sir, "sir"},
    {Keyword::runtest, "runtest"},
    {Keyword::state, "state"},
    {Keyword::hir, "hir"},
    {Keyword::hdr, "hdr"},
    {Keyword::tir, "tir"},
    {Keyword::tdr, "tdr"},
    {Keyword::endir, "endir"},
    {Keyword::enddr, "enddr"},
    {Keyword::frequency, "frequency"},
    {Keyword::pio, "pio"},
    {Keyword::piomap, "piomap"},
    {Keyword::trst, "trst"},
});
static_assert(rowsByNumber(kKeywords, &KeywordRow::keyword));

}  // namespace

Keyword keywordOf(const FileChannel& channel) {
  for (const KeywordRow& row : kKeywords) {
    if (channel.is(row.word)) return row.keyword;
  }
  return Keyword::unknown;
}

std::string_view nameOf(Keyword keyword) {
  return kKeywords[static_cast<std::size_t>(keyword)].word.text;
}

bool skipUnknown(FileChannel& channel) {
  if (isSpace(static_cast<unsigned char>(channel.tokenAsWritten().front()))) return true;
  const std::string text = concat("Unknown SVF keyword [", channel.tokenLower(), "]");
  if (channel.rules().exact) channel.report().fatal(text);
  channel.report().warning(text);
  channel.skipUntil(";");
  return false;
}

}  // namespace tapforge

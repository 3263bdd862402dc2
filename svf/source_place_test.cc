#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "shell/io/text.h"
#include "tests/support/fakes.h"

namespace tapforge::testing {
namespace {

std::string compactPlace(const SourcePlace& place) {
  return concat(place.line, ":", place.column, "[", place.lastItem, "]", place.lineText);
}

// The place after the token "here" or "@", or at the end of the file.
std::string placeIn(const std::string& svf, SyntaxRules rules) {
  rules.positionText = compactPlace;
  Source source(svf, rules);
  while (source.channel.lexKeyword() && !source.channel.is("here") && !source.channel.is("@")) {
  }
  return source.channel.positionText();
}

TEST(SourcePlace, OfTheLastItem) {
  struct Case {
    std::string svf;
    std::string script;  // line:column[item]line
    std::string ksvf;    // line[item]
  };
  const auto pad = [](std::size_t size) { return std::string(size, ' '); };
  const std::vector<Case> cases = {
      {"a;\n b;\r\n\t@\tc\n", "4:1[@]\t@\tc", "3[@]"},
      {"\n\n \n@", "4:0[@]@", "4[@]"},
      {"a;\r@\r;", "2:0[@]@", "1[@]"},
      {"!c\n//d\n x @", "3:3[@] x @", "3[@]"},
      {"a; !c\n@;", "2:0[@]@;", "2[@]"},
      {"a here!c", "1:2[here]a here!c", "1[here]"},
      // A word is read with the character after it.
      {"a here\n b", "2:0[here] b", "2[here]"},
      {"here\r\n b", "2:0[here]", "1[here]"},
      {"a here", "1:2[here]a here", "1[here]"},
      // In KSVF white space and comments are items too, which shows at the end.
      {"a", "1:0[a]a", "1[a]"},
      {"a;  ", "1:3[;]a;  ", "1[ ]"},
      {"a;\n", "2:0[;]", "2[\n]"},
      {"a; \n  \n", "3:0[;]", "3[\n]"},
      {"a;!b", "1:2[;]a;!b", "1[]"},
      {"a;!b\n", "2:0[;]", "2[]"},
      // Lines are shown in parts of 199 characters.
      {pad(197) + "@;", "1:197[@]" + pad(197) + "@;", "1[@]"},
      {pad(198) + "@;", "1:198[@]" + pad(198) + "@", "1[@]"},
      {pad(199) + "@;", "1:0[@]@;", "1[@]"},
      {pad(397) + "@ ;", "1:198[@]" + pad(198) + "@", "1[@]"},
      {pad(398) + "@ ;", "1:0[@]@ ;", "1[@]"},
      {"a;" + pad(199) + "\n @", "2:1[@] @", "2[@]"},
      {pad(194) + "here;", "1:194[here]" + pad(194) + "here;", "1[here]"},
      {pad(195) + "here;", "1:0[here];", "1[here]"},
      {pad(394) + "here;a", "1:0[here];a", "1[here]"},
      {pad(196) + "here;", "1:0[here]e;", "1[here]"},
      // The part after the last whole one may be empty.
      {pad(194) + "here\na", "2:0[here]a", "2[here]"},
      {pad(195) + "here\na", "1:0[here]", "2[here]"},
      {pad(394) + "here\na", "1:0[here]", "2[here]"},
      {pad(195) + "here", "1:0[here]", "1[here]"},
      {pad(195) + "here\n\n@", "1:0[here]", "2[here]"},
      {pad(195) + "a  \n@", "2:0[@]@", "2[@]"},
  };
  for (const std::size_t size : kBlockSizes) {
    const WithBlockSize blocks(size);
    for (const Case& each : cases) {
      EXPECT_EQ(placeIn(each.svf, scriptRules()), each.script) << "blocks of " << size;
      std::string ksvf = placeIn(each.svf, ksvfRules());
      EXPECT_EQ(ksvf.erase(ksvf.find(':'), 2), each.ksvf) << "blocks of " << size;
    }
  }
}

}  // namespace
}  // namespace tapforge::testing

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "io/text.h"
#include "tests/support/in_memory.h"

namespace tapforge::testing {
namespace {

struct Case {
  std::string svf;
  std::string script;         // with the rules of mode 0
  std::string ksvf = script;  // and of mode 1
};

void expectInAllBlocks(const std::vector<Case>& cases,
                       std::string (*read)(const std::string& svf, SyntaxRules rules)) {
  for (const std::size_t size : kBlockSizes) {
    const WithBlockSize blocks(size);
    SCOPED_TRACE(size);
    for (const auto& [svf, script, ksvf] : cases) {
      EXPECT_EQ(read(svf, progmode_svf2tapbus::kSyntaxRules), script);
      EXPECT_EQ(read(svf, progmode_svf2ksvf::kSyntaxRules), ksvf);
    }
  }
}

std::string blanks(std::size_t count) { return std::string(count, ' '); }

struct Comments final : CommentSink {
  void commentText(std::string_view piece) override { text += piece; }
  void commentEnd() override { all += "{" + std::exchange(text, {}) + "} "; }
  std::string text;
  std::string all;
};

// Words as they are, #number=value (the value where it is written otherwise), 'punctuation,
// ?other, {comment} and a refusal. Each token is given back once.
std::string tokens(const std::string& svf, SyntaxRules rules) {
  Comments list;
  Source source(svf, rules, &list);
  FileChannel& channel = source.channel;
  try {
    while (channel.lexKeyword()) {
      channel.unlex();
      channel.lex();
      const std::string token(channel.tokenAsWritten());
      constexpr const char* kMarks[] = {"", "#", "'", "'", "?"};
      list.all += kMarks[static_cast<std::size_t>(channel.type())] + token;
      if (channel.key() != 0 && token.find('_') == std::string::npos) {
        EXPECT_EQ(channel.key(), Word::keyOf(channel.tokenLower())) << token;
      }
      const std::string value = std::to_string(channel.number());
      if (channel.type() == TokenType::number && value != token) list.all += "=" + value;
      list.all += ' ';
    }
  } catch (const ProgramEnd&) {
    list.all += source.saying();
  }
  return list.all;
}

TEST(Tokens, OfBothModes) {
  const std::string word(97, 'w');
  const std::string digits(29, '0');
  expectInAllBlocks(
      {
          {"SIR 8\tTDI(0F);\n\v\f", "SIR #8 TDI '( 0F ') '; "},
          {"_a1 a_b_ 12ab 1e3 1_0 a-b+1.5e-3", "_a1 a_b_ 12ab 1e3 1_0 a '- b '+ #1 '. 5e '- #3 "},
          {"[]^`{|}~\"#$%&'*?:\\", "'[ '] '^ '` '{ '| '} '~ '\" '# '$ '% '& '' '* '? ': '\\ "},
          {{"a\0\x01\x7f\x80", 5}, {"a ?\0 ?\x01 ?\x7f ?\x80 ", 14}},
          {"1\xe9 2\xe9x", "#1\xe9=1 2\xe9x "},
          {"abcdefghijklmnO abcdefghijklmnop", "abcdefghijklmnO abcdefghijklmnop "},
          {"999999999999999999 1000000000000000000", "#999999999999999999 #1000000000000000000 "},
          {"9223372036854775808;", "#9223372036854775808=9223372036854775807 '; "},
          {word + ";" + word, word + " '; " + word + " "},
          {";" + word + "w ;", "'; token exceeds 98 characters"},
          {digits + " " + digits + ";", "#" + digits + "=0 #" + digits + "=0 '; "},
          {digits + "0", "Beyond max number width [30]", "number exceeds [30] digits"},
          {digits + "a ", "Beyond max number width [30]", "number exceeds [30] digits"},
          {"a!b  c\nd// e\n!\n//f\n\n g!", "a {!b  c} d {// e} {!} {//f} g {!} "},
          {"!a\rb\r\n//c\rd", "{!a} b {//c} d ", "{!a\rb\r} {//c\rd} "},
          {"!" + blanks(400) + "!\na", "{!" + blanks(400) + "!} a "},
          {"a/b / /1 /; c/!d\n/", "a '/ b '/ '/ #1 '/ '; c '/ {!d} '/ ", "a 'b '  '1 '; c '! d "},
          {"/ /\n/\t a///b", "'/ '/ '/ a {///b} ", "'  '\n '\t a {///b} "},
          {"a/", "a '/ ", "a "},
          // A line is cut after 199 characters, and no comment begins at the cut.
          {blanks(198) + "/a", "'/ a ", "'a "},
          {"a\n" + blanks(198) + "//a\n", "a [skCm] range[0 <= -1 <= 2]", "a {//a} "},
          {blanks(198) + "a//b", "a {//b} "},
      },
      tokens);
}

// Line, last item and, where lines are shown, column and text of the line: after the token
// "here", "@" or "/", or at the end of the file or a refusal.
std::string place(const std::string& svf, SyntaxRules rules) {
  rules.positionText = [](const SourcePlace& at) {
    const std::string line(at.sSrcLine);
    return concat(at.lLineNum, "[", at.sLastItem, "]",
                  line.empty() ? "" : concat(at.iTokenCol, ":", line));
  };
  Source source(svf, rules);
  try {
    while (source.channel.lexKeyword() && !source.channel.is("here") && !source.channel.is("@") &&
           !source.channel.is("/")) {
    }
  } catch (const ProgramEnd&) {
  }
  return source.channel.positionText();
}

TEST(Tokens, HaveAPlace) {
  expectInAllBlocks(
      {
          {"a;\n b;\r\n\t@\tc\n", "4[@]1:\t@\tc", "3[@]"},
          {"a;\r@\r;", "2[@]0:@", "1[@]"},
          {"!c\n//d\n \n x @", "4[@]3: x @", "4[@]"},
          {"a here!c", "1[here]2:a here!c", "1[here]"},
          // A word is read with the character after it.
          {"a here\n b", "2[here]0: b", "2[here]"},
          {"here\r\n b", "2[here]", "1[here]"},
          {"a here", "1[here]2:a here", "1[here]"},
          // White space and comments are items of mode 1, which shows at the end.
          {"ab ", "1[ab]0:ab ", "1[ ]"},
          {"ab", "1[ab]0:ab", "1[ab]"},
          {"a; ", "1[;]2:a; ", "1[ ]"},
          {"a; \n  \n", "3[;]", "3[\n]"},
          {"a; /", "1[/]3:a; /", "1[ ]"},
          {"a; !c\n/", "2[/]0:/", "2[]"},
          {"ab" + std::string(1500, '\n'), "1501[ab]", "1501[\n]"},
          {"a;!b", "1[;]2:a;!b", "1[]"},
          {"a;!b\n", "2[;]", "2[]"},
          // Lines are shown in parts of 199 characters.
          {blanks(197) + "@;", "1[@]197:" + blanks(197) + "@;", "1[@]"},
          {blanks(198) + "@;", "1[@]198:" + blanks(198) + "@", "1[@]"},
          {blanks(199) + "@;", "1[@]0:@;", "1[@]"},
          {blanks(397) + "@ ;", "1[@]198:" + blanks(198) + "@", "1[@]"},
          {blanks(398) + "@ ;", "1[@]0:@ ;", "1[@]"},
          {"a;" + blanks(199) + "\n @", "2[@]1: @", "2[@]"},
          {blanks(194) + "here;", "1[here]194:" + blanks(194) + "here;", "1[here]"},
          {blanks(195) + "here;", "1[here]0:;", "1[here]"},
          {blanks(196) + "here;", "1[here]0:e;", "1[here]"},
          // The part after the last whole one may be empty.
          {blanks(194) + "here\na", "2[here]0:a", "2[here]"},
          {blanks(195) + "here\na", "1[here]", "2[here]"},
          {"a;\n" + blanks(394) + "here\n\n@", "2[here]", "3[here]"},
          {blanks(195) + "here", "1[here]", "1[here]"},
          {blanks(198) + ";", "1[;]", "1[;]"},
          {blanks(195) + "a  \n@", "2[@]0:@", "2[@]"},
          // A word that is too long has been read up to the limit.
          {blanks(198) + std::string(99, 'w'), "1[]0:" + std::string(98, 'w'), "1[ ]"},
          {blanks(150) + std::string(99, 'w'), "1[]0:" + std::string(50, 'w'), "1[ ]"},
          {std::string(30, '0') + "\n\n", "1[]0:" + std::string(30, '0'), "1[]"},
          {blanks(198) + "/x", "1[/]0:x", "1[x]"},
      },
      place);
}

}  // namespace
}  // namespace tapforge::testing

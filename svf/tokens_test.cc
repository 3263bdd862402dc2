#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/fakes.h"

namespace tapforge::testing {
namespace {

struct Comments final : CommentSink {
  void commentText(std::string_view piece) override { text += piece; }
  void commentEnd() override { all += "{" + std::exchange(text, {}) + "} "; }
  std::string text;
  std::string all;
};

// Words as they are, #number=value (the value where it is written otherwise), 'punctuation,
// ?other, {comment}, and a refusal's first line. Each token is given back once.
std::string tokens(std::string_view svf, const SyntaxRules& rules) {
  Comments list;
  Source source(svf, rules, &list);
  FileChannel& channel = source.channel;
  try {
    while (channel.lexKeyword()) {
      channel.unlex();
      channel.lex();
      const std::string token(channel.tokenAsWritten());
      list.all += std::string_view("\0#''?", 5)[static_cast<std::size_t>(channel.type())];
      if (list.all.back() == '\0') list.all.pop_back();
      list.all += token;
      const std::string value = std::to_string(channel.number());
      if (channel.type() == TokenType::number && value != token) list.all += "=" + value;
      list.all += ' ';
    }
  } catch (const ProgramEnd&) {
    list.all += source.report.saying();
  }
  return list.all;
}

TEST(Tokens, OfBothModes) {
  struct Case {
    std::string svf;
    std::string script;
    std::string ksvf = script;
  };
  const std::string word(97, 'w');
  const std::string digits(29, '0');
  const std::string pad(198, ' ');
  const std::vector<Case> cases = {
      {" \t\r\n\v\f", ""},
      {"SIR 8\tTDI(0F);\n", "SIR #8 TDI '( 0F ') '; "},
      {"_a1 a_b__ 12ab 1e3 1_0 0_", "_a1 a_b__ 12ab 1e3 1_0 0_ "},
      {"a-b+1.5e-3,", "a '- b '+ #1 '. 5e '- #3 ', "},
      {"[]^`{|}~\"#$%&'*<=>?:\\",
       "'[ '] '^ '` '{ '| '} '~ '\" '# '$ '% '& '' '* '< '= '> '? ': '\\ "},
      {{"a\0\x01\x7f\x80", 5}, {"a ?\0 ?\x01 ?\x7f ?\x80 ", 14}},
      {"1\xe9 2\xe9x", "#1\xe9=1 2\xe9x "},
      // Words are looked for sixteen characters at a time.
      {word.substr(82) + " " + word.substr(81) + "\t" + word.substr(80),
       word.substr(82) + " " + word.substr(81) + " " + word.substr(80) + " "},
      {"999999999999999999 1000000000000000000", "#999999999999999999 #1000000000000000000 "},
      {"9223372036854775807;9223372036854775808",
       "#9223372036854775807 '; #9223372036854775808=9223372036854775807 "},
      {word + ";" + word, word + " '; " + word + " "},
      {";" + word + "w ;", "'; token exceeds 98 characters"},
      {digits + " " + digits + ";", "#" + digits + "=0 #" + digits + "=0 '; "},
      {digits + "0", "Beyond max number width [30]", "number exceeds [30] digits"},
      {digits + "a ", "Beyond max number width [30]", "number exceeds [30] digits"},
      {"a!b  c\nd// e\n!\n//f\n\n g!", "a {!b  c} d {// e} {!} {//f} g {!} "},
      {"!a\rb\r\n//c\rd", "{!a} b {//c} d ", "{!a\rb\r} {//c\rd} "},
      {"!" + pad + pad + "!\na", "{!" + pad + pad + "!} a "},
      {"a/b / /1 /; c/!d\n/", "a '/ b '/ '/ #1 '/ '; c '/ {!d} '/ ", "a 'b '  '1 '; c '! d "},
      {"/ /\n/\t a///b", "'/ '/ '/ a {///b} ", "'  '\n '\t a {///b} "},
      {"a/", "a '/ ", "a "},
      // A line is cut after 199 characters, and no comment begins at the cut.
      {pad + "/a", "'/ a ", "'a "},
      {pad + "//a\n", "[skCm] range[0 <= -1 <= 2]", "{//a} "},
      {pad + "a//b", "a {//b} "},
  };
  for (const std::size_t size : kBlockSizes) {
    const WithBlockSize blocks(size);
    for (const Case& each : cases) {
      EXPECT_EQ(tokens(each.svf, scriptRules()), each.script) << "blocks of " << size;
      EXPECT_EQ(tokens(each.svf, ksvfRules()), each.ksvf) << "blocks of " << size;
    }
  }
}

TEST(Tokens, AreComparedInAnyCase) {
  const auto is = [](std::string_view svf, const char* word) {
    Source source(svf, scriptRules());
    source.channel.lex();
    return source.channel.is(word);
  };
  EXPECT_TRUE(is("SdR", "sdr") && is("EndState", "endstate") && is("FREQUENCY", "frequency"));
  EXPECT_FALSE(is("sdr1", "sdr") || is("sd", "sdr") || is("sir", "sdr") || is("5", "sdr"));
  EXPECT_FALSE(is("endstates", "endstate") || is("endstat", "endstate"));
  EXPECT_FALSE(is("frequencx", "frequency") || is("frequenc", "frequency"));
}

}  // namespace
}  // namespace tapforge::testing

#include "svf/word_scan.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>
#include <vector>

#include "svf/line_end.h"

namespace tapforge {
namespace {

TEST(WordScan, FastAndPlainAgree) {
  std::mt19937 random(1);
  for (int round = 0; round < 50000; ++round) {
    std::array<unsigned char, 16> text{};
    for (unsigned char& c : text) {
      const auto any = static_cast<unsigned>(random());
      c = static_cast<unsigned char>("azAZ09_s"[any >> 8 & 7]);
      if (any % 8 == 0) c = static_cast<unsigned char>(any >> 8);
    }
    std::array<char, 16> fast{};
    std::array<char, 16> slow{};
    const WordRun quick = scanWord(text.data(), fast.data());
    const WordRun sure = plain::scanWord(text.data(), slow.data());
    ASSERT_EQ(quick.size, sure.size);
    ASSERT_EQ(quick.digits, sure.digits);
    ASSERT_EQ(std::string(fast.data(), quick.size), std::string(slow.data(), sure.size));
  }
}

TEST(LineEnd, FastAndPlainAgree) {
  std::mt19937 random(2);
  for (int round = 0; round < 20000; ++round) {
    std::vector<unsigned char> text(260, 'x');
    for (int i = 0; i < 4; ++i) text[random() % text.size()] = random() % 2 != 0 ? '\n' : '\r';
    const unsigned char* begin = text.data() + random() % 20;
    const unsigned char* limit = begin + random() % 200;
    ASSERT_EQ(findLineEnd(begin, limit), findLineEndPlain(begin, limit));
    ASSERT_EQ(countLineFeeds(begin, limit), countLineFeedsPlain(begin, limit));
  }
}

}  // namespace
}  // namespace tapforge

#include "svf/text_scan.h"

#include <gtest/gtest.h>

#include <cctype>
#include <vector>

namespace tapforge {
namespace {

TEST(TextScan, WordsEndAtAnyOtherCharacter) {
  for (unsigned place = 0; place < 16; ++place) {
    for (int c = 0; c < 256; ++c) {
      std::vector<unsigned char> text(32, 'a');
      text[place] = static_cast<unsigned char>(c);
      const bool inWord = c < 128 && (std::isalnum(c) != 0 || c == '_');
      EXPECT_EQ(wordPrefix(text.data()), inWord ? 16 : place) << c;
      EXPECT_EQ(scalar::wordPrefix(text.data()), inWord ? 16 : place) << c;
    }
  }
}

TEST(TextScan, LineEndsAreCountedInTextsOfAnyLength) {
  for (const LineEnds which : {LineEnds::lineFeed, LineEnds::lineFeedOrReturn}) {
    for (std::size_t size = 0; size <= 40; ++size) {
      std::vector<unsigned char> text(size + 16, '\n');
      std::fill_n(text.begin(), size, 'x');
      const auto count = [&](auto function) {
        return function(text.data(), text.data() + size, which);
      };
      for (std::size_t place = 0; place < size; ++place) {
        for (int c = 0; c < 256; ++c) {
          text[place] = static_cast<unsigned char>(c);
          const bool ends = c == '\n' || (c == '\r' && which == LineEnds::lineFeedOrReturn);
          EXPECT_EQ(count(countLineEnds), ends ? 1 : 0) << c;
          EXPECT_EQ(count(scalar::countLineEnds), ends ? 1 : 0) << c;
        }
        text[place] = 'x';
      }
    }
    // More than a byte can count.
    const std::vector<unsigned char> many(3 * 4096 + 5, '\n');
    EXPECT_EQ(countLineEnds(&many.front(), &many.back(), which), 3 * 4096 + 4);
  }
}

}  // namespace
}  // namespace tapforge

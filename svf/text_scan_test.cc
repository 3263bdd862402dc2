#include "svf/text_scan.h"

#include <gtest/gtest.h>

#include <cctype>
#include <string>

namespace tapforge {
namespace {

const unsigned char* bytes(const std::string& text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

TEST(TextScan, WordsEndAtAnyOtherCharacter) {
  for (unsigned place = 0; place < 16; ++place) {
    for (int c = 0; c < 256; ++c) {
      std::string text(32, 'a');
      text[place] = static_cast<char>(c);
      const bool inWord = c < 128 && (std::isalnum(c) != 0 || c == '_');
      EXPECT_EQ(wordPrefix(bytes(text)), inWord ? 16 : place) << c;
      EXPECT_EQ(scalar::wordPrefix(bytes(text)), inWord ? 16 : place) << c;
    }
  }
}

TEST(TextScan, LineEndsAreCountedInTextsOfAnyLength) {
  for (const LineEnds which : {LineEnds::lineFeed, LineEnds::lineFeedOrReturn}) {
    for (std::size_t size = 0; size <= 40; ++size) {
      for (std::size_t place = 0; place < size * 256; ++place) {
        const int c = static_cast<int>(place % 256);
        std::string text = std::string(size, 'x') + "\n\r";
        text[place / 256] = static_cast<char>(c);
        const bool ends = c == '\n' || (c == '\r' && which == LineEnds::lineFeedOrReturn);
        EXPECT_EQ(countLineEnds(bytes(text), bytes(text) + size, which), ends ? 1 : 0) << c;
        EXPECT_EQ(scalar::countLineEnds(bytes(text), bytes(text) + size, which), ends ? 1 : 0) << c;
      }
    }
    // More than a byte can count.
    const std::string many(3 * 4096 + 5, '\n');
    EXPECT_EQ(countLineEnds(bytes(many), bytes(many) + 3 * 4096 + 4, which), 3 * 4096 + 4);
  }
}

}  // namespace
}  // namespace tapforge

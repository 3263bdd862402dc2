#include "scan/hex_digits.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>

#include "io/text.h"

namespace tapforge {
namespace {

const std::string kDigits = "0123456789abcdef";

const unsigned char* bytes(const std::string& text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

TEST(HexDigits, AreReadSixteenAtATime) {
  for (std::size_t place = 0; place < 16; ++place) {
    for (int c = 0; c < 256; ++c) {
      std::string text = "0123456789abcDEF0";
      text[place] = static_cast<char>(c);
      const std::size_t count = c < 128 && std::isxdigit(c) != 0 ? 16 : place;
      EXPECT_EQ(hexValue(static_cast<unsigned char>(c)) >= 0, count == 16) << c;
      for (const auto function : {decodeShortHex, scalar::decodeShortHex}) {
        const ShortHex found = function(bytes(text));
        EXPECT_EQ(found.digits, count) << c;
        EXPECT_EQ(found.value, std::stoull("0" + text.substr(0, count), nullptr, 16)) << c;
      }
    }
  }
}

TEST(HexDigits, AreWrittenSixteenAtATime) {
  for (std::size_t i = 0; i < 256; ++i) {
    std::string text = kDigits;
    text[i / 16] = kDigits[i % 16];
    for (const auto function : {encodeHex16, scalar::encodeHex16}) {
      std::string out(16, ' ');
      function(std::stoull(text, nullptr, 16), HexCase::lower, out.data());
      EXPECT_EQ(out, text);
      function(std::stoull(text, nullptr, 16), HexCase::upper, out.data());
      EXPECT_EQ(out, xToUpper(text));
    }
  }
}

// A row of nibbles, each as its digit.
std::string nibbles(const std::string& row) {
  std::string text;
  for (const char c : row) text += {kDigits[c & 15], kDigits[c >> 4 & 15]};
  return text;
}

TEST(HexDigits, FillARowDownwards) {
  for (std::size_t size = 0; size <= 40; ++size) {
    const std::string digits = (kDigits.substr(1) + kDigits + kDigits).substr(0, size);
    const std::string text = digits + std::string(16, 'g');
    for (std::size_t top = 0; top < 44; ++top) {
      for (std::size_t count = 0; count <= top + 1; ++count) {
        // What stands above in the row stays; below it is still 0.
        std::string row(top / 2, '\0');
        row += (top % 2 == 0 ? '\x50' : '\0') + std::string(8, '\x5a');
        std::string expected = nibbles(row);
        auto* const place = reinterpret_cast<unsigned char*>(row.data());
        const auto done = decodeHex(bytes(text), count, place, static_cast<std::int64_t>(top));
        EXPECT_EQ(done, std::min(size, count));
        for (std::size_t i = 0; i < done; ++i) expected[top - i] = digits[i];
        EXPECT_EQ(nibbles(row), expected) << size << " digits from " << top << " down";
      }
    }
  }
}

}  // namespace
}  // namespace tapforge

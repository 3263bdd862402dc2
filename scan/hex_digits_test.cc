#include "scan/hex_digits.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>

namespace tapforge {
namespace {

const std::string kDigits = "0123456789abcdef";

const unsigned char* bytes(const std::string& text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

TEST(HexDigits, SixteenAtATime) {
  for (std::size_t place = 0; place < 16; ++place) {
    for (int c = 0; c < 256; ++c) {
      std::string text = "0123456789abcDEF";
      text[place] = static_cast<char>(c);
      const std::size_t count = c < 128 && std::isxdigit(c) != 0 ? 16 : place;
      EXPECT_EQ(hexValue(static_cast<unsigned char>(c)) >= 0, count == 16) << c;
      const std::string digits = "0" + text.substr(0, count);
      const std::uint64_t value = std::stoull(digits, nullptr, 16);
      for (const auto function : {decodeShortHex, scalar::decodeShortHex}) {
        EXPECT_EQ(function(bytes(text)).digits, count) << c;
        EXPECT_EQ(function(bytes(text)).value, value) << c;
      }
      if (count != 16) continue;
      for (const auto function : {encodeHex16, scalar::encodeHex16}) {
        std::string out(16, ' ');
        function(value, HexCase::upper, out.data());
        std::transform(text.begin(), text.end(), text.begin(),
                       [](char d) { return std::toupper(d); });
        EXPECT_EQ(out, text);
        function(value, HexCase::lower, out.data());
        std::transform(text.begin(), text.end(), text.begin(),
                       [](char d) { return std::tolower(d); });
        EXPECT_EQ(out, text);
      }
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
        EXPECT_EQ(decodeHex(bytes(text), count, place, static_cast<std::int64_t>(top)),
                  std::min(size, count));
        for (std::size_t i = 0; i < std::min(size, count); ++i) expected[top - i] = digits[i];
        EXPECT_EQ(nibbles(row), expected) << size << " digits from " << top << " down";
      }
    }
  }
}

}  // namespace
}  // namespace tapforge

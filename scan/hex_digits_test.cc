#include "scan/hex_digits.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <string>

namespace tapforge {
namespace {

TEST(HexDigits, SixteenAtATime) {
  for (unsigned place = 0; place < 16; ++place) {
    for (int c = 0; c < 256; ++c) {
      std::string text = "0123456789abcDEF";
      text[place] = static_cast<char>(c);
      const unsigned digits = c < 128 && std::isxdigit(c) != 0 ? 16 : place;
      const std::uint64_t value =
          std::strtoull(("0" + text.substr(0, digits)).c_str(), nullptr, 16);
      for (const auto function : {decodeShortHex, scalar::decodeShortHex}) {
        const ShortHex found = function(reinterpret_cast<const unsigned char*>(text.data()));
        EXPECT_EQ(found.digits, digits) << c;
        EXPECT_EQ(found.value, value) << c;
      }
      EXPECT_EQ(hexValue(static_cast<unsigned char>(c)) >= 0, digits == 16) << c;

      const std::uint64_t bits = 0x0123456789abcdef ^ std::uint64_t{static_cast<unsigned>(c)}
                                                          << (4 * place);
      for (const auto function : {encodeHex16, scalar::encodeHex16}) {
        char lower[17];
        char upper[17];
        std::snprintf(lower, sizeof lower, "%016llx", static_cast<unsigned long long>(bits));
        std::snprintf(upper, sizeof upper, "%016llX", static_cast<unsigned long long>(bits));
        char out[17] = {};
        function(bits, HexCase::lower, out);
        EXPECT_STREQ(out, lower);
        function(bits, HexCase::upper, out);
        EXPECT_STREQ(out, upper);
      }
    }
  }
}

// A row of nibbles, one a character.
std::string nibbles(const std::string& row) {
  std::string text;
  for (const char c : row) {
    text += "0123456789abcdef"[c & 15];
    text += "0123456789abcdef"[c >> 4 & 15];
  }
  return text;
}

TEST(HexDigits, FillARowDownwards) {
  const std::string kDigits = "123456789abcdef0fedcba987654321012345678";
  for (std::size_t size = 0; size <= kDigits.size(); ++size) {
    const std::string text = kDigits.substr(0, size) + std::string(16, 'g');
    for (std::size_t top = 0; top < 44; ++top) {
      for (std::size_t count = 0; count <= top + 1; ++count) {
        // What stands above in the row stays, and below it is still 0.
        std::string row(top / 2, '\0');
        row += top % 2 == 0 ? "\x50" + std::string(8, '\x5a') : '\0' + std::string(8, '\x5a');
        std::string expected = nibbles(row);
        const std::size_t done =
            decodeHex(reinterpret_cast<const unsigned char*>(text.data()), count,
                      reinterpret_cast<unsigned char*>(row.data()), static_cast<std::int64_t>(top));
        EXPECT_EQ(done, std::min(size, count));
        for (std::size_t i = 0; i < done; ++i) expected[top - i] = kDigits[i];
        EXPECT_EQ(nibbles(row), expected)
            << size << " digits, " << count << " from " << top << " down";
      }
    }
  }
}

}  // namespace
}  // namespace tapforge

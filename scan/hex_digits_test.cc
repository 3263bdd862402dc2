#include "scan/hex_digits.h"

#include <gtest/gtest.h>

#include <cctype>
#include <string>

#include "io/text.h"

namespace tapforge {
namespace {

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
  const std::string digits = "0123456789abcdef";
  for (std::size_t i = 0; i < 256; ++i) {
    std::string text = digits;
    text[i / 16] = digits[i % 16];
    for (const auto function : {encodeHex16, scalar::encodeHex16}) {
      std::string out(16, ' ');
      function(std::stoull(text, nullptr, 16), HexCase::lower, out.data());
      EXPECT_EQ(out, text);
      function(std::stoull(text, nullptr, 16), HexCase::upper, out.data());
      EXPECT_EQ(out, xToUpper(text));
    }
  }
}

}  // namespace
}  // namespace tapforge

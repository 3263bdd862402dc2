#include "scan/hex_digits.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>
#include <vector>

namespace tapforge {
namespace {

// The fast loops must do what their plain twins do, for every length, place in
// the row and offending character.
TEST(HexDigits, FastAndPlainAgree) {
  std::mt19937 random(1);
  const std::string_view mostly = "0123456789abcdefABCDEF0123456789abcdefABCDEF /:@G`g)\n\x80\xff";
  for (int round = 0; round < 20000; ++round) {
    std::vector<unsigned char> text(80, '0');
    for (unsigned char& c : text) {
      c = static_cast<unsigned char>(mostly[random() % (round % 2 != 0 ? 22 : mostly.size())]);
    }
    const std::size_t count = random() % 60;
    const long top = static_cast<long>(count) + static_cast<long>(random() % 5);
    std::vector<unsigned char> fast(64, 0);
    // What was stored before, above the place, must stand.
    fast[static_cast<std::size_t>(top / 2) + 1] = 0xab;
    if (top % 2 == 0) fast[static_cast<std::size_t>(top / 2)] = 0xc0;
    std::vector<unsigned char> slow = fast;
    const std::size_t done = decodeHex(text.data(), count, fast.data(), top);
    EXPECT_EQ(done, plain::decodeHex(text.data(), count, slow.data(), top));
    ASSERT_EQ(fast, slow) << "count " << count << " top " << top;

    const ShortHex quick = decodeShortHex(text.data());
    const ShortHex sure = plain::decodeShortHex(text.data());
    ASSERT_EQ(quick.digits, sure.digits);
    ASSERT_EQ(quick.value, sure.value);
  }
  for (const HexCase hexCase : {HexCase::lower, HexCase::upper}) {
    for (const std::uint64_t bits : {std::uint64_t{0x0123456789abcdef}, ~std::uint64_t{0}}) {
      std::array<char, 16> fast{};
      std::array<char, 16> slow{};
      encodeHex16(bits, hexCase, fast.data());
      plain::encodeHex16(bits, hexCase, slow.data());
      EXPECT_EQ(fast, slow);
    }
  }
}

}  // namespace
}  // namespace tapforge

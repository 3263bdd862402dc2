#include "scan/tap_pattern.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace tapforge {
namespace {

// TDI, TDO, MASK and SMASK as the letters i, o, m and s.
constexpr std::string_view kLetters = "ioms";

bool set(CTapPattern& pattern, std::int64_t length, std::string_view letters) {
  ScanValues given;
  for (const char letter : letters) {
    given.add(kScanValues[kLetters.find(letter)]);
    if (length > 0) pattern.storage(kScanValues[kLetters.find(letter)]).initTapField(length);
  }
  return pattern.setPattern(length, given);
}

std::string inForce(const CTapPattern& pattern) {
  std::string letters;
  for (std::size_t i = 0; i < kScanValues.size(); ++i) {
    if (pattern[kScanValues[i]] != nullptr) letters += kLetters[i];
  }
  return letters;
}

TEST(CTapPattern, CarriesValuesOverWhileTheLengthStays) {
  struct Case {
    std::int64_t length;
    std::string_view given;
    std::string_view expected;
  };
  CTapPattern pattern;
  const std::vector<Case> cases = {
      {0, "", ""},       {8, "iom", "iom"}, {8, "", "im"},  {8, "s", "ims"}, {8, "o", "ioms"},
      {8, "io", "ioms"}, {9, "io", "io"},   {9, "m", "im"}, {0, "", ""},     {9, "i", "i"},
  };
  for (const Case& each : cases) {
    EXPECT_TRUE(set(pattern, each.length, each.given));
    EXPECT_EQ(pattern.lLength(), each.length);
    EXPECT_EQ(inForce(pattern), each.expected) << each.length << " " << each.given;
  }
  EXPECT_FALSE(set(pattern, 8, "oms"));
}

TEST(CTapPattern, FreesLargeValuesThatAreNoLongerInForce) {
  CTapPattern pattern;
  const auto holdsTdo = [&pattern] { return pattern.storage(ScanValue::tdo).pData() != nullptr; };
  EXPECT_TRUE(set(pattern, 8 * CTapField::kSmall, "io"));
  EXPECT_TRUE(set(pattern, 8 * CTapField::kSmall, ""));
  EXPECT_TRUE(holdsTdo());
  EXPECT_TRUE(set(pattern, 8 * CTapField::kSmall + 1, "io"));
  EXPECT_TRUE(holdsTdo());
  EXPECT_TRUE(set(pattern, 8 * CTapField::kSmall + 1, ""));
  EXPECT_FALSE(holdsTdo());
}

}  // namespace
}  // namespace tapforge

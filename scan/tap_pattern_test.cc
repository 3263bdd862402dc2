#include "scan/tap_pattern.h"

#include <gtest/gtest.h>

#include <string>

namespace tapforge {
namespace {

// TDI, TDO, MASK and SMASK.
constexpr std::string_view kLetters = "ioms";

// Gives these values; says which are in force then.
std::string set(CTapPattern& pattern, std::int64_t length, std::string_view letters) {
  ScanValues given;
  for (const char letter : letters) {
    given.add(kScanValues[kLetters.find(letter)]);
    pattern.storage(kScanValues[kLetters.find(letter)]).initTapField(length);
  }
  if (!pattern.setPattern(length, given)) return "refused";
  std::string inForce = std::to_string(pattern.lLength());
  for (const ScanValue value : kScanValues) {
    if (pattern[value] != nullptr) inForce += kLetters[static_cast<std::size_t>(value)];
  }
  return inForce;
}

TEST(CTapPattern, CarriesValuesOverWhileTheLengthStays) {
  CTapPattern pattern;
  EXPECT_EQ(set(pattern, 0, ""), "0");
  EXPECT_EQ(set(pattern, 8, "iom"), "8iom");
  EXPECT_EQ(set(pattern, 8, ""), "8im");
  EXPECT_EQ(set(pattern, 8, "so"), "8ioms");
  EXPECT_EQ(set(pattern, 9, "io"), "9io");
  EXPECT_EQ(set(pattern, 9, "m"), "9im");
  EXPECT_EQ(set(pattern, 0, ""), "0");
  EXPECT_EQ(set(pattern, 9, "i"), "9i");
  EXPECT_EQ(set(pattern, 8, "oms"), "refused");
}

TEST(CTapPattern, FreesLargeValuesThatAreNoLongerInForce) {
  for (const std::int64_t bytes : {CTapField::kSmall, CTapField::kSmall + 1}) {
    CTapPattern pattern;
    const auto held = [&pattern] { return pattern.storage(ScanValue::tdo).pData() != nullptr; };
    EXPECT_EQ(set(pattern, 8 * bytes, "io"), std::to_string(8 * bytes) + "io");
    EXPECT_TRUE(held());
    set(pattern, 8 * bytes, "m");
    EXPECT_EQ(held(), bytes == CTapField::kSmall);
  }
}

}  // namespace
}  // namespace tapforge

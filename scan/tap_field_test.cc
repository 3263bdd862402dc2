#include "scan/tap_field.h"

#include <gtest/gtest.h>

namespace tapforge {
namespace {

TEST(CTapField, TurnsUntilItsFirstDigitComesFirst) {
  CTapField field;
  for (std::int64_t digits = 1; digits < 9; ++digits) {
    for (std::int64_t start = 0; start < digits; ++start) {
      field.initTapField(4 * digits - 1);
      for (std::int64_t i = 0; i < digits; ++i) field.setTapDataChar(i, static_cast<unsigned>(i));
      field.setStart(start);
      for (int turned = 0; turned < 2; ++turned) {
        for (std::int64_t i = 0; i < digits; ++i) {
          EXPECT_EQ(field.getTapDataChar(i), (start + i) % digits);
        }
        field.normalise();
        EXPECT_EQ(field.lStartChar(), 0);
      }
    }
  }
}

TEST(CTapField, IsZeroAtFirstAndAgain) {
  CTapField field;
  for (const std::int64_t bits : {1, 64, 65, 384, 385, 1000, 70, 385, 8, 1000}) {
    if (bits <= 64) {
      field.initShort(bits, 1);
      EXPECT_EQ(field.shortBits(), 1U);
      EXPECT_EQ(field.bitsAt(bits - 1), bits == 1 ? 1U : 0U);
    }
    field.initTapField(bits);
    for (std::int64_t low = 0; low < bits; low += 64) {
      EXPECT_EQ(field.bitsAt(low), 0U) << bits;
      field.putBits(low, bits - low < 64 ? lowBits(bits - low) : ~0ULL);
    }
    EXPECT_EQ(field.bitsAt(bits - 1), 1U) << bits;
  }
}

}  // namespace
}  // namespace tapforge

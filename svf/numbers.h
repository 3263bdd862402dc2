#ifndef TAPFORGE_SVF_NUMBERS_H
#define TAPFORGE_SVF_NUMBERS_H

#include <cstdint>
#include <optional>
#include <string_view>

#include "svf/file_channel.h"

namespace tapforge {

/// What getFloat found: nothing, a real number or a whole one.
struct Number {
  enum class Kind { none, real, integer };
  Kind kind = Kind::none;
  float real = 0;
  std::int64_t integer = 0;

  explicit operator bool() const { return kind != Kind::none; }
  /// The value as the 32-bit float that counts and times are kept in.
  float asFloat() const { return kind == Kind::integer ? static_cast<float>(integer) : real; }
};

/// Reads a number that is not negative: digits[.digits][e[+|-]digits]. When
/// there is none, the token in its place stays the current one.
///
/// Two rules differ from the usual syntax: a real number must be followed by a
/// word or a sign («1.5;» is fatal), and an exponent in a token of its own
/// counts only after a mantissa that ends in "e". Under -exact a number is
/// digits[.digits][e[+|-]digits] in one piece, which channel.numberText() then is, and
/// all else that may stand for one is fatal.
Number getFloat(FileChannel& channel);

/// True for digits, or digits followed by "e" and zero or more digits.
bool testIsNum(std::string_view text);

enum class Sign { any, nonNegative };

/// Reads an integer, with "-" in front if `sign` allows; else fatal "Number
/// expected" or "Expected positive number".
std::int64_t lGetLong(Sign sign, FileChannel& channel);

/// The exact product of a number, written as under -exact, and a factor from 1 up:
/// its whole part, and whether a fraction is left. Nothing from 2^63 on.
struct WholeAndFraction {
  std::int64_t whole;
  bool hasFraction;
};
std::optional<WholeAndFraction> exactProduct(std::string_view number, std::int64_t factor);

/// Cut to a whole number; saturates, and not-a-number is 0.
std::int64_t truncated(float value);

/// The product and the sum, saturated.
std::int64_t saturatedProduct(std::int64_t a, std::int64_t b);
std::int64_t saturatedSum(std::int64_t a, std::int64_t b);

}  // namespace tapforge

#endif  // TAPFORGE_SVF_NUMBERS_H

#ifndef TAPFORGE_SVF_REAL_NUMBER_H
#define TAPFORGE_SVF_REAL_NUMBER_H

#include "svf/tokens.h"

namespace tapforge {

/// What getFloat found: nothing, a real number or a whole one.
struct Number {
  enum class Kind { none, real, integer };
  Kind kind = Kind::none;
  float real = 0;
  long integer = 0;

  explicit operator bool() const { return kind != Kind::none; }
  /// The value as the 32-bit float that counts and times are kept in.
  float asFloat() const { return kind == Kind::integer ? static_cast<float>(integer) : real; }
};

/// Reads a number that is not negative: digits[.digits][e[+|-]digits]. When
/// there is none, the token in its place stays the current one.
///
/// Two oddities belong to the syntax as it is accepted: a real number must be
/// followed by a word or a sign («1.5;» is fatal), and an exponent in a token
/// of its own counts only after a mantissa that ends in "e".
Number getFloat(Lexer& lexer);

/// Cut to a whole number; saturates, and not-a-number is 0.
long truncated(float value);

/// The product and the sum, saturated.
long saturatedProduct(long a, long b);
long saturatedSum(long a, long b);

}  // namespace tapforge

#endif  // TAPFORGE_SVF_REAL_NUMBER_H

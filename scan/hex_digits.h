#ifndef TAPFORGE_SCAN_HEX_DIGITS_H
#define TAPFORGE_SCAN_HEX_DIGITS_H

#include <cstddef>
#include <cstdint>

#include "shell/io/text.h"

namespace tapforge {

/// The loops that every digit of a scan passes through: hex text in, hex text
/// out, sixteen digits at a time where the machine can. Each has a plain twin
/// in namespace `plain`, which other machines use and tests compare with.

/// The value of a hex digit, or -1.
int hexValue(unsigned char c);

/// Decodes the hex digits at the start of `text`, at most `count`, into the
/// row of nibbles `row`: the first digit goes to nibble `top`, each further
/// one to the nibble below (nibble i is in byte i / 2, low half when i is
/// even), all of them 0 before. Stops at the first other character. Returns the
/// number decoded. 16 bytes behind the text and 8 behind the row may be read.
std::size_t decodeHex(const unsigned char* text, std::size_t count, unsigned char* row, long top);

/// Writes the sixteen digits of `bits`, the most significant one first.

void encodeHex16(std::uint64_t bits, HexCase hexCase, char* out);

/// Looks at the sixteen characters of `text`: how many hex digits it begins
/// with (at most 16), and their value as a number.
struct ShortHex {
  unsigned digits;
  std::uint64_t value;
};
ShortHex decodeShortHex(const unsigned char* text);

namespace plain {
std::size_t decodeHex(const unsigned char* text, std::size_t count, unsigned char* row, long top);
void encodeHex16(std::uint64_t bits, HexCase hexCase, char* out);
ShortHex decodeShortHex(const unsigned char* text);
}  // namespace plain

}  // namespace tapforge

#endif  // TAPFORGE_SCAN_HEX_DIGITS_H

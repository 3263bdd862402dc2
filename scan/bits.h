#ifndef TAPFORGE_SCAN_BITS_H
#define TAPFORGE_SCAN_BITS_H

#include <bit>
#include <cassert>
#include <cstdint>
#include <cstring>

namespace tapforge {

/// Bits are handled in chunks of 64: how many there are and how they lie in memory.
/// Depends on nothing else of the program.

inline constexpr std::int64_t kChunkBits = 64;

/// The case of the letters in hex digits.
enum class HexCase { lower, upper };

/// The hex digits and the bytes that hold `bits` bits (0 to the largest number).
constexpr std::int64_t digitsOf(std::int64_t bits) { return bits / 4 + (bits % 4 != 0 ? 1 : 0); }
constexpr std::int64_t bytesOf(std::int64_t bits) { return bits / 8 + (bits % 8 != 0 ? 1 : 0); }

/// `count` (1 to 64) 1s in the lowest bits.
constexpr std::uint64_t lowBits(std::int64_t count) {
  assert(count >= 1 && count <= kChunkBits);
  return ~std::uint64_t{0} >> (kChunkBits - count);
}

/// Eight bytes as a number, the first one lowest.
inline std::uint64_t loadLittle(const unsigned char* from) {
  std::uint64_t chunk = 0;
  std::memcpy(&chunk, from, sizeof chunk);
  if constexpr (std::endian::native == std::endian::big) chunk = __builtin_bswap64(chunk);
  return chunk;
}
inline void storeLittle(unsigned char* to, std::uint64_t chunk) {
  if constexpr (std::endian::native == std::endian::big) chunk = __builtin_bswap64(chunk);
  std::memcpy(to, &chunk, sizeof chunk);
}

/// Stores a number as eight bytes, the first one highest.
inline void storeBig(char* to, std::uint64_t chunk) {
  if constexpr (std::endian::native == std::endian::little) chunk = __builtin_bswap64(chunk);
  std::memcpy(to, &chunk, sizeof chunk);
}

}  // namespace tapforge

#endif  // TAPFORGE_SCAN_BITS_H

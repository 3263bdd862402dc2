#ifndef TAPFORGE_SVF_SIMD_H
#define TAPFORGE_SVF_SIMD_H

// Decides for which processors svf/text_scan and scan/hex_digits take sixteen
// characters at a time by vector instructions. All others, and a build with
// TAPFORGE_SIMD=OFF, use the functions in namespace `scalar`.
#if !defined(TAPFORGE_NO_SIMD)
#if defined(__SSE2__) && defined(__x86_64__)
#define TAPFORGE_SSE2 1
#include <emmintrin.h>
#elif defined(__aarch64__) && defined(__ARM_NEON) && !defined(__AARCH64EB__)
#define TAPFORGE_NEON 1
#include <arm_neon.h>

#include <cstdint>

namespace tapforge::neon {
// The number of bytes at the start of `matches` that are all ones.
inline unsigned leading(uint8x16_t matches) {
  // Four bits a byte, the first byte lowest.
  const uint8x8_t narrow = vshrn_n_u16(vreinterpretq_u16_u8(matches), 4);
  const std::uint64_t others = ~vget_lane_u64(vreinterpret_u64_u8(narrow), 0);
  return others == 0 ? 16 : static_cast<unsigned>(__builtin_ctzll(others)) / 4;
}
}  // namespace tapforge::neon
#endif
#endif

#endif  // TAPFORGE_SVF_SIMD_H

#ifndef TAPFORGE_SVF_SIMD_H
#define TAPFORGE_SVF_SIMD_H

// The one place that decides which machines get the fast loops over sixteen
// characters (svf/text_scan, scan/hex_digits). All others, and a build with
// TAPFORGE_SIMD=OFF, use the functions in namespace `scalar`, which give the
// same results and which the tests compare the fast ones with.
#if !defined(TAPFORGE_NO_SIMD)
#if defined(__SSE2__) && defined(__x86_64__)
#define TAPFORGE_SSE2 1
#include <emmintrin.h>
#elif defined(__aarch64__) && defined(__ARM_NEON)
#define TAPFORGE_NEON 1
#include <arm_neon.h>
#endif
#endif

#endif  // TAPFORGE_SVF_SIMD_H

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The AVX2 build.

#include "studio/kernels/spectral.h"

#if defined(__i386__) || defined(__x86_64__)

#include <immintrin.h>

#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2")
#endif

namespace corvin::studio {
namespace {

using Vec = __m256d;
constexpr unsigned kLanes = 4;

inline Vec broadcast(double value) { return _mm256_set1_pd(value); }
inline Vec from_int(const std::int32_t* in) {
  return _mm256_cvtepi32_pd(*reinterpret_cast<const __m128i*>(in));
}
inline void store(double* out, Vec value) { _mm256_storeu_pd(out, value); }
inline void transpose(Vec (&r)[kLanes]) {
  const Vec a = _mm256_unpacklo_pd(r[0], r[1]);
  const Vec b = _mm256_unpackhi_pd(r[0], r[1]);
  const Vec c = _mm256_unpacklo_pd(r[2], r[3]);
  const Vec d = _mm256_unpackhi_pd(r[2], r[3]);
  r[0] = _mm256_permute2f128_pd(a, c, 0x20);
  r[1] = _mm256_permute2f128_pd(b, d, 0x20);
  r[2] = _mm256_permute2f128_pd(a, c, 0x31);
  r[3] = _mm256_permute2f128_pd(b, d, 0x31);
}

#include "studio/kernels/spectral_body.inc"

}  // namespace
}  // namespace corvin::studio

#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

namespace corvin::studio {

extern const SpectralVariant spectral_avx2;
const SpectralVariant spectral_avx2 = {{"AVX2", 20, kCpuAvx2}, kLanes, to_bins, from_bins, run};

}  // namespace corvin::studio

#else

namespace corvin::studio {

extern const SpectralVariant spectral_avx2;
const SpectralVariant spectral_avx2 = {};

}  // namespace corvin::studio

#endif

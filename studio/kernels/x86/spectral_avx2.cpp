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

#include "studio/kernels/x86/doubles_avx2.inc"

inline Vec from_int(const std::int32_t* in) {
  return _mm256_cvtepi32_pd(*reinterpret_cast<const __m128i*>(in));
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

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The AVX-512 build.

#include "studio/kernels/spectral.h"

#if defined(__i386__) || defined(__x86_64__)

#if defined(__GNUC__) && !defined(__clang__)
// g++ 12 takes its own header's undefined vectors, which masks never let through, for mistakes.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>

#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx512f,avx512vl,avx512dq,avx512bw"))), \
                             apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx512f,avx512vl,avx512dq,avx512bw")
#endif

namespace corvin::studio {
namespace {

using Vec = __m512d;
constexpr unsigned kLanes = 8;

inline Vec broadcast(double value) { return _mm512_set1_pd(value); }
inline Vec from_int(const std::int32_t* in) {
  return _mm512_cvtepi32_pd(*reinterpret_cast<const __m256i*>(in));
}
inline void store(double* out, Vec value) { _mm512_storeu_pd(out, value); }
inline void transpose(Vec (&r)[kLanes]) {
  Vec pairs[kLanes];
  for (unsigned i = 0; i < 4; ++i) {
    pairs[2 * i] = _mm512_unpacklo_pd(r[2 * i], r[2 * i + 1]);
    pairs[2 * i + 1] = _mm512_unpackhi_pd(r[2 * i], r[2 * i + 1]);
  }
  for (unsigned odd = 0; odd < 2; ++odd) {
    const Vec a = _mm512_shuffle_f64x2(pairs[odd], pairs[2 + odd], 0x88);  // lanes 0, 4
    const Vec b = _mm512_shuffle_f64x2(pairs[odd], pairs[2 + odd], 0xdd);  // lanes 2, 6
    const Vec c = _mm512_shuffle_f64x2(pairs[4 + odd], pairs[6 + odd], 0x88);
    const Vec d = _mm512_shuffle_f64x2(pairs[4 + odd], pairs[6 + odd], 0xdd);
    r[odd] = _mm512_shuffle_f64x2(a, c, 0x88);
    r[2 + odd] = _mm512_shuffle_f64x2(b, d, 0x88);
    r[4 + odd] = _mm512_shuffle_f64x2(a, c, 0xdd);
    r[6 + odd] = _mm512_shuffle_f64x2(b, d, 0xdd);
  }
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

extern const SpectralVariant spectral_avx512;
const SpectralVariant spectral_avx512 = {
    {"AVX-512", 30, kCpuAvx512}, kLanes, to_bins, from_bins, run};

}  // namespace corvin::studio

#else

namespace corvin::studio {

extern const SpectralVariant spectral_avx512;
const SpectralVariant spectral_avx512 = {};

}  // namespace corvin::studio

#endif

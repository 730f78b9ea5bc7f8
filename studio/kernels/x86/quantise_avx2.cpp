// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The AVX2 build.

#include "studio/kernels/quantise.h"

#include "studio/kernels/x86/begin_avx2.inc"

#include "studio/kernels/x86/doubles_avx2.inc"

Vec minimum(Vec a, Vec b) { return _mm256_min_pd(a, b); }
Vec maximum(Vec a, Vec b) { return _mm256_max_pd(a, b); }
Vec magnitude(Vec value) { return _mm256_andnot_pd(_mm256_set1_pd(-0.0), value); }
double largest(Vec value) {
  const __m128d two = _mm_max_pd(_mm256_castpd256_pd128(value), _mm256_extractf128_pd(value, 1));
  return _mm_cvtsd_f64(_mm_max_sd(two, _mm_unpackhi_pd(two, two)));
}
unsigned count_outside(Vec value, Vec low, Vec high) {
  const Vec outside =
      _mm256_or_pd(_mm256_cmp_pd(value, low, _CMP_LT_OQ), _mm256_cmp_pd(value, high, _CMP_GT_OQ));
  return static_cast<unsigned>(
      __builtin_popcount(static_cast<unsigned>(_mm256_movemask_pd(outside))));
}
void store_rounded(std::int32_t* out, Vec value) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_cvtpd_epi32(value));
}
Ints counted(std::uint32_t first) {
  return _mm_add_epi32(_mm_set1_epi32(static_cast<int>(first)), _mm_setr_epi32(0, 1, 2, 3));
}

#include "studio/kernels/x86/dither_words.inc"

#include "studio/kernels/quantise_body.inc"

#include "studio/kernels/x86/end.inc"

namespace corvin::studio {
extern const QuantiseVariant quantise_avx2 = {kAvx2, run};
}

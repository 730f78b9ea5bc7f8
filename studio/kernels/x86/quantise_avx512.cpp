// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The AVX-512 build.

#include "studio/kernels/quantise.h"

#include "studio/kernels/x86/begin_avx512.inc"

#include "studio/kernels/x86/doubles_avx512.inc"

Vec minimum(Vec a, Vec b) { return _mm512_min_pd(a, b); }
Vec maximum(Vec a, Vec b) { return _mm512_max_pd(a, b); }
Vec magnitude(Vec value) { return _mm512_abs_pd(value); }
double largest(Vec value) { return _mm512_reduce_max_pd(value); }
unsigned count_outside(Vec value, Vec low, Vec high) {
  const unsigned mask = static_cast<unsigned>(_mm512_cmp_pd_mask(value, low, _CMP_LT_OQ)) |
                        static_cast<unsigned>(_mm512_cmp_pd_mask(value, high, _CMP_GT_OQ));
  return static_cast<unsigned>(__builtin_popcount(mask));
}
void store_rounded(std::int32_t* out, Vec value) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), _mm512_cvtpd_epi32(value));
}
Ints counted(std::uint32_t first) {
  return _mm256_add_epi32(_mm256_set1_epi32(static_cast<int>(first)),
                          _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
}

#include "studio/kernels/x86/dither_words.inc"

#include "studio/kernels/quantise_body.inc"

#include "studio/kernels/x86/end.inc"

namespace corvin::studio {
extern const QuantiseVariant quantise_avx512 = {kAvx512, run};
}

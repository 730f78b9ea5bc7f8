// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The AVX2 build.

#include "studio/kernels/quantise.h"

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
using Ints = __m128i;
constexpr std::size_t kLanes = 4;

Vec broadcast(double value) { return _mm256_set1_pd(value); }
Vec load(const double* in) { return _mm256_loadu_pd(in); }
void store(double* out, Vec value) { _mm256_storeu_pd(out, value); }
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
Ints mixed(Ints h) {
  h = _mm_xor_si128(h, _mm_srli_epi32(h, 16));
  h = _mm_mullo_epi32(h, _mm_set1_epi32(0x7feb352d));
  h = _mm_xor_si128(h, _mm_srli_epi32(h, 15));
  h = _mm_mullo_epi32(h, _mm_set1_epi32(static_cast<int>(0x846ca68bu)));
  return _mm_xor_si128(h, _mm_srli_epi32(h, 16));
}
Vec dither(Ints h) {
  const Ints sum = _mm_add_epi32(_mm_and_si128(h, _mm_set1_epi32(0xffff)), _mm_srli_epi32(h, 16));
  return _mm256_cvtepi32_pd(_mm_sub_epi32(sum, _mm_set1_epi32(65535))) * broadcast(1.0 / 65536);
}

#include "studio/kernels/quantise_body.inc"

}  // namespace
}  // namespace corvin::studio

#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

namespace corvin::studio {

extern const QuantiseVariant quantise_avx2;
const QuantiseVariant quantise_avx2 = {{"AVX2", 20, kCpuAvx2}, run};

}  // namespace corvin::studio

#else

namespace corvin::studio {

extern const QuantiseVariant quantise_avx2;
const QuantiseVariant quantise_avx2 = {};

}  // namespace corvin::studio

#endif

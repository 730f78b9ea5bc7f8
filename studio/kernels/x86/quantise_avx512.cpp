// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The AVX-512 build.

#include "studio/kernels/quantise.h"

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
using Ints = __m256i;
constexpr std::size_t kLanes = 8;

Vec broadcast(double value) { return _mm512_set1_pd(value); }
Vec load(const double* in) { return _mm512_loadu_pd(in); }
void store(double* out, Vec value) { _mm512_storeu_pd(out, value); }
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
Ints mixed(Ints h) {
  h = _mm256_xor_si256(h, _mm256_srli_epi32(h, 16));
  h = _mm256_mullo_epi32(h, _mm256_set1_epi32(0x7feb352d));
  h = _mm256_xor_si256(h, _mm256_srli_epi32(h, 15));
  h = _mm256_mullo_epi32(h, _mm256_set1_epi32(static_cast<int>(0x846ca68bu)));
  return _mm256_xor_si256(h, _mm256_srli_epi32(h, 16));
}
Vec dither(Ints h) {
  const Ints sum =
      _mm256_add_epi32(_mm256_and_si256(h, _mm256_set1_epi32(0xffff)), _mm256_srli_epi32(h, 16));
  return _mm512_cvtepi32_pd(_mm256_sub_epi32(sum, _mm256_set1_epi32(65535))) *
         broadcast(1.0 / 65536);
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

extern const QuantiseVariant quantise_avx512;
const QuantiseVariant quantise_avx512 = {{"AVX-512", 30, kCpuAvx512}, run};

}  // namespace corvin::studio

#else

namespace corvin::studio {

extern const QuantiseVariant quantise_avx512;
const QuantiseVariant quantise_avx512 = {};

}  // namespace corvin::studio

#endif

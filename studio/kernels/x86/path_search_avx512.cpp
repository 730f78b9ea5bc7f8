// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The AVX-512 build: the AVX2 build's vectors, but in 32 registers, where all paths fit.

#include "studio/kernels/path_search.h"

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

using Floats = __m256;
// A type of its own, since + of __m256i adds 64 bits at a time.
struct Ints {
  __m256i v;
};

alignas(32) constexpr std::int32_t kLaneNumbers[kSearchLanes] = {0, 1, 2, 3, 4, 5, 6, 7};

inline Ints load(const std::int32_t* p) {
  return {_mm256_load_si256(reinterpret_cast<const __m256i*>(p))};
}
inline Floats load(const float* p) { return _mm256_load_ps(p); }
inline void store(std::int32_t* p, Ints a) {
  _mm256_store_si256(reinterpret_cast<__m256i*>(p), a.v);
}
inline void store(float* p, Floats a) { _mm256_store_ps(p, a); }
inline Ints broadcast(std::int32_t value) { return {_mm256_set1_epi32(value)}; }
inline Floats broadcast(float value) { return _mm256_set1_ps(value); }
inline Ints pair(std::int32_t left, std::int32_t right) {
  return {_mm256_set_m128i(_mm_set1_epi32(right), _mm_set1_epi32(left))};
}

inline Ints operator+(Ints a, Ints b) { return {_mm256_add_epi32(a.v, b.v)}; }
inline Ints operator-(Ints a, Ints b) { return {_mm256_sub_epi32(a.v, b.v)}; }
inline Ints operator&(Ints a, Ints b) { return {_mm256_and_si256(a.v, b.v)}; }
inline Ints operator|(Ints a, Ints b) { return {_mm256_or_si256(a.v, b.v)}; }
inline Ints operator^(Ints a, Ints b) { return {_mm256_xor_si256(a.v, b.v)}; }
inline Ints clear(Ints a, Ints mask) { return {_mm256_andnot_si256(mask.v, a.v)}; }

inline Floats to_float(Ints a) { return _mm256_cvtepi32_ps(a.v); }
inline Ints to_ints(Floats a) { return {_mm256_cvtps_epi32(a)}; }
inline Ints as_ints(Floats a) { return {_mm256_castps_si256(a)}; }
inline Floats as_floats(Ints a) { return _mm256_castsi256_ps(a.v); }

inline Ints negative(Ints a) { return {_mm256_srai_epi32(a.v, 31)}; }
inline Ints equal(Ints a, Ints b) { return {_mm256_cmpeq_epi32(a.v, b.v)}; }
inline Ints greater(Ints a, Ints b) { return {_mm256_cmpgt_epi32(a.v, b.v)}; }
inline Ints select(Ints mask, Ints yes, Ints no) {
  return {_mm256_ternarylogic_epi32(mask.v, yes.v, no.v, 0xca)};
}
inline unsigned outside(Floats a, float bound) {
  const Floats magnitude = _mm256_andnot_ps(_mm256_set1_ps(-0.0f), a);
  return static_cast<unsigned>(
      _mm256_movemask_ps(_mm256_cmp_ps(magnitude, _mm256_set1_ps(bound), _CMP_GT_OQ)));
}
inline Ints permute(Ints a, Ints index) { return {_mm256_permutevar8x32_epi32(a.v, index.v)}; }

template <unsigned kPaths>
inline Ints smallest(Ints a) {
  __m256i v = _mm256_min_epi32(a.v, _mm256_shuffle_epi32(a.v, 0xb1));
  v = _mm256_min_epi32(v, _mm256_shuffle_epi32(v, 0x4e));
  if constexpr (kPaths == 8) v = _mm256_min_epi32(v, _mm256_permute2x128_si256(v, v, 1));
  return {v};
}
template <unsigned kPaths>
inline Ints largest(Ints a) {
  __m256i v = _mm256_max_epi32(a.v, _mm256_shuffle_epi32(a.v, 0xb1));
  v = _mm256_max_epi32(v, _mm256_shuffle_epi32(v, 0x4e));
  if constexpr (kPaths == 8) v = _mm256_max_epi32(v, _mm256_permute2x128_si256(v, v, 1));
  return {v};
}

#include "studio/kernels/path_search_body.inc"

}  // namespace
}  // namespace corvin::studio

#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

namespace corvin::studio {

extern const PathSearchVariant path_search_avx512;
const PathSearchVariant path_search_avx512 = {{"AVX-512", 30, kCpuAvx512}, run};

}  // namespace corvin::studio

#else

namespace corvin::studio {

extern const PathSearchVariant path_search_avx512;
const PathSearchVariant path_search_avx512 = {};

}  // namespace corvin::studio

#endif

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The SSE2 build.

#include "studio/kernels/quantise.h"

#include "studio/kernels/x86/begin_sse2.inc"

#include "studio/kernels/x86/doubles_sse2.inc"

Vec minimum(Vec a, Vec b) { return _mm_min_pd(a, b); }
Vec maximum(Vec a, Vec b) { return _mm_max_pd(a, b); }
Vec magnitude(Vec value) { return _mm_andnot_pd(_mm_set1_pd(-0.0), value); }
double largest(Vec value) {
  return _mm_cvtsd_f64(_mm_max_sd(value, _mm_unpackhi_pd(value, value)));
}
unsigned count_outside(Vec value, Vec low, Vec high) {
  const Vec outside = _mm_or_pd(_mm_cmplt_pd(value, low), _mm_cmpgt_pd(value, high));
  const int mask = _mm_movemask_pd(outside);
  return static_cast<unsigned>((mask & 1) + (mask >> 1));
}
void store_rounded(std::int32_t* out, Vec value) {
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_cvtpd_epi32(value));
}
// One word in each 64-bit half, as _mm_mul_epu32 takes them.
Ints counted(std::uint32_t first) {
  return _mm_setr_epi32(static_cast<int>(first), 0, static_cast<int>(first + 1), 0);
}
Ints mixed(Ints h) {
  // The upper words fill with the products' high halves; every step reads the lower ones alone.
  const Ints word = _mm_setr_epi32(-1, 0, -1, 0);
  h = _mm_xor_si128(h, _mm_srli_epi32(h, 16));
  h = _mm_and_si128(_mm_mul_epu32(h, _mm_set1_epi32(0x7feb352d)), word);
  h = _mm_xor_si128(h, _mm_srli_epi32(h, 15));
  h = _mm_and_si128(_mm_mul_epu32(h, _mm_set1_epi32(static_cast<int>(0x846ca68bu))), word);
  return _mm_xor_si128(h, _mm_srli_epi32(h, 16));
}
Vec dither(Ints h) {
  const Ints sum = _mm_add_epi32(_mm_and_si128(h, _mm_set1_epi32(0xffff)), _mm_srli_epi32(h, 16));
  const Ints centred = _mm_sub_epi32(sum, _mm_set1_epi32(65535));
  return to_double(_mm_shuffle_epi32(centred, _MM_SHUFFLE(2, 0, 2, 0))) * broadcast(1.0 / 65536);
}

#include "studio/kernels/quantise_body.inc"

#include "studio/kernels/x86/end.inc"

namespace corvin::studio {
extern const QuantiseVariant quantise_sse2 = {kSse2, run};
}

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The SSE2 build.

#include "studio/kernels/bit_fir.h"

#include "studio/kernels/x86/begin_sse2.inc"

// The vector moved down by kCount lanes, with the next vector's first lanes on top.
template <unsigned kCount>
__m128i shifted(__m128i low, __m128i next) {
  if constexpr (kCount == 4) return next;
  const __m128 a = _mm_castsi128_ps(low);
  const __m128 b = _mm_castsi128_ps(next);
  if constexpr (kCount == 2) return _mm_castps_si128(_mm_shuffle_ps(a, b, _MM_SHUFFLE(1, 0, 3, 2)));
  const __m128 joined = _mm_move_ss(a, b);
  return _mm_castps_si128(_mm_shuffle_ps(joined, joined, _MM_SHUFFLE(0, 3, 2, 1)));
}

// Lanes / 4 vectors.
template <unsigned kVectors>
struct Sums {
  static constexpr unsigned kStride = 4 * kVectors;
  __m128i v[kVectors];
  void zero() {
    for (__m128i& part : v) part = _mm_setzero_si128();
  }
  void add(const std::int32_t* row) {
    for (unsigned i = 0; i < kVectors; ++i) {
      v[i] = _mm_add_epi32(v[i], *reinterpret_cast<const __m128i*>(row + 4 * i));
    }
  }
  template <unsigned kCount>
  void emit(std::int32_t* out, std::size_t stride) {
    out[0] = _mm_cvtsi128_si32(v[0]);
    if constexpr (kCount >= 2) out[stride] = _mm_cvtsi128_si32(_mm_srli_si128(v[0], 4));
    if constexpr (kCount == 4) {
      out[2 * stride] = _mm_cvtsi128_si32(_mm_srli_si128(v[0], 8));
      out[3 * stride] = _mm_cvtsi128_si32(_mm_srli_si128(v[0], 12));
    }
  }
  template <unsigned kCount>
  void shift() {
    for (unsigned i = 0; i + 1 < kVectors; ++i) v[i] = shifted<kCount>(v[i], v[i + 1]);
    v[kVectors - 1] = shifted<kCount>(v[kVectors - 1], _mm_setzero_si128());
  }
};
using Sums8 = Sums<2>;
using Sums12 = Sums<3>;

#include "studio/kernels/bit_fir_body.inc"

#include "studio/kernels/x86/end.inc"

namespace corvin::studio {
extern const BitFirVariant bit_fir_sse2 = {kSse2, 12, run};
}

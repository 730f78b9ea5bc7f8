// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The AVX-512 build.

#include "studio/kernels/bit_fir.h"

#include "studio/kernels/x86/begin_avx512.inc"

struct Sums8 {
  static constexpr unsigned kStride = 8;
  __m256i v;
  void zero() { v = _mm256_setzero_si256(); }
  void add(const std::int32_t* row) {
    v = _mm256_add_epi32(v, *reinterpret_cast<const __m256i*>(row));
  }
  template <unsigned kCount>
  void emit(std::int32_t* out, std::size_t) {
    *out = _mm_cvtsi128_si32(_mm256_castsi256_si128(v));
  }
  template <unsigned kCount>
  void shift() {
    v = _mm256_alignr_epi32(_mm256_setzero_si256(), v, kCount);
  }
};

struct Sums12 {
  static constexpr unsigned kStride = 16;  // one load never crosses a cache line
  __m512i v;
  void zero() { v = _mm512_setzero_si512(); }
  void add(const std::int32_t* row) {
    v = _mm512_add_epi32(v, *reinterpret_cast<const __m512i*>(row));
  }
  template <unsigned kCount>
  void emit(std::int32_t* out, std::size_t stride) {
    const __m128i low = _mm512_castsi512_si128(v);
    out[0] = _mm_cvtsi128_si32(low);
    if constexpr (kCount >= 2) out[stride] = _mm_extract_epi32(low, 1);
    if constexpr (kCount == 4) {
      out[2 * stride] = _mm_extract_epi32(low, 2);
      out[3 * stride] = _mm_extract_epi32(low, 3);
    }
  }
  template <unsigned kCount>
  void shift() {
    v = _mm512_alignr_epi32(_mm512_setzero_si512(), v, kCount);
  }
};

#include "studio/kernels/bit_fir_body.inc"

#include "studio/kernels/x86/end.inc"

namespace corvin::studio {
extern const BitFirVariant bit_fir_avx512 = {kAvx512, 16, run};
}

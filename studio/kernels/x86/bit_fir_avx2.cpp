// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The AVX2 build.

#include "studio/kernels/bit_fir.h"

#include "studio/kernels/x86/begin_avx2.inc"

// The vector moved down by kCount lanes, with the next vector's first lanes on top.
template <unsigned kCount>
__m256i shifted(__m256i low, __m256i next) {
  const __m256i middle = _mm256_permute2x128_si256(low, next, 0x21);
  return _mm256_alignr_epi8(middle, low, 4 * kCount);
}

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
    v = shifted<kCount>(v, _mm256_setzero_si256());
  }
};

struct Sums12 {
  static constexpr unsigned kStride = 12;
  __m256i low;
  __m128i high;
  void zero() {
    low = _mm256_setzero_si256();
    high = _mm_setzero_si128();
  }
  void add(const std::int32_t* row) {
    low = _mm256_add_epi32(low, _mm256_loadu_si256(reinterpret_cast<const __m256i*>(row)));
    high = _mm_add_epi32(high, *reinterpret_cast<const __m128i*>(row + 8));
  }
  template <unsigned kCount>
  void emit(std::int32_t* out, std::size_t stride) {
    const __m128i first = _mm256_castsi256_si128(low);
    out[0] = _mm_cvtsi128_si32(first);
    if constexpr (kCount >= 2) out[stride] = _mm_extract_epi32(first, 1);
    if constexpr (kCount == 4) {
      out[2 * stride] = _mm_extract_epi32(first, 2);
      out[3 * stride] = _mm_extract_epi32(first, 3);
    }
  }
  template <unsigned kCount>
  void shift() {
    low = shifted<kCount>(low, _mm256_castsi128_si256(high));
    high = _mm_srli_si128(high, 4 * kCount);
  }
};

#include "studio/kernels/bit_fir_body.inc"

#include "studio/kernels/x86/end.inc"

namespace corvin::studio {
extern const BitFirVariant bit_fir_avx2 = {kAvx2, 12, run};
}

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The body that the SSE and SSE3 builds share: four lanes of partial sums. They differ in how the
// lanes are added up.

#ifndef CORVIN_CLASSIC_FOUNDATION_KERNELS_SSE_SUM_H_
#define CORVIN_CLASSIC_FOUNDATION_KERNELS_SSE_SUM_H_

#include <emmintrin.h>

/// Lane i is the sum of row[k] * taps[k] over k = i mod 4, k < n taken up to a multiple of 4. `row`
/// is on a 16-byte boundary. Four chains of additions, since one would wait on its own latency.
inline __m128 SumProducts(const float* row, const float* taps, int n) {
  const auto product = [row, taps](int k) {
    return _mm_mul_ps(_mm_loadu_ps(taps + k), _mm_load_ps(row + k));
  };
  const int vectors = n > 0 ? (n - 1) / 4 + 1 : 0;
  __m128 sum0 = _mm_setzero_ps();
  __m128 sum1 = _mm_setzero_ps();
  __m128 sum2 = _mm_setzero_ps();
  __m128 sum3 = _mm_setzero_ps();
  int v = 0;
  for (; v < vectors % 4; ++v) sum0 = _mm_add_ps(sum0, product(4 * v));
  for (; v < vectors; v += 4) {
    sum0 = _mm_add_ps(sum0, product(4 * v));
    sum1 = _mm_add_ps(sum1, product(4 * v + 4));
    sum2 = _mm_add_ps(sum2, product(4 * v + 8));
    sum3 = _mm_add_ps(sum3, product(4 * v + 12));
  }
  return _mm_add_ps(_mm_add_ps(sum0, sum1), _mm_add_ps(sum2, sum3));
}

#endif  // CORVIN_CLASSIC_FOUNDATION_KERNELS_SSE_SUM_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The SSE build.

#include "classic/foundation/kernel_loops.h"

#ifdef CORVIN_HAS_SSE_KERNELS

#include <emmintrin.h>

#include "classic/foundation/kernels_sse_sum.h"

namespace {

float Dot(const float* row, const float* taps, int n) {
  const __m128 sum = SumProducts(row, taps, n);
  // Lanes 2 and 3 onto 0 and 1, then the two: (a + c) + (b + d).
  const __m128 pairs = _mm_add_ps(sum, _mm_movehl_ps(sum, sum));
  return _mm_cvtss_f32(_mm_add_ss(pairs, _mm_shuffle_ps(pairs, pairs, 1)));
}

}  // namespace

void dot8_sse0(float* out, const float* a, const float* b, int n) { *out = Dot(b, a, n); }

void dot8_sse(float* out, const float* a, const float* b, int n) { *out = Dot(b, a, n); }

int dot8_sse2(float* out, const float* taps, float** hist, int phases, int taps_total, int pos,
              int step) {
  return RunPhases(out, taps, hist, phases, taps_total, pos, step, Dot, [](int j) { return j; });
}

int dot8_sse3a(float* out, const float* taps, float** hist, int phases, int taps_total,
               DOT8Dec_DATA* plan, int count) {
  return RunPlan(out, taps, hist, phases, taps_total, plan, count, Dot);
}

#endif  // CORVIN_HAS_SSE_KERNELS

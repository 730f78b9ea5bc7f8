// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The SSE3 build.

#include "classic/foundation/kernel_loops.h"

#ifdef CORVIN_HAS_SSE_KERNELS

#include <pmmintrin.h>

#include "classic/foundation/kernels_sse_sum.h"

namespace {

__attribute__((target("sse3"))) float Dot(const float* row, const float* taps, int n) {
  const __m128 sum = SumProducts(row, taps, n);
  // Two horizontal adds: (a + b) + (c + d).
  const __m128 pairs = _mm_hadd_ps(sum, sum);
  return _mm_cvtss_f32(_mm_hadd_ps(pairs, pairs));
}

}  // namespace

void dot8_sse30(float* out, const float* a, const float* b, int n) { *out = Dot(b, a, n); }

void dot8_sse3(float* out, const float* a, const float* b, int n) { *out = Dot(b, a, n); }

int dot8_sse32(float* out, const float* taps, float** hist, int phases, int taps_total, int pos,
               int step) {
  return RunPhases(out, taps, hist, phases, taps_total, pos, step, Dot, [](int j) { return j; });
}

int dot8_sse33(float* out, const float* taps, float** hist, int phases, int taps_total,
               DOT8Dec_DATA* plan, int count) {
  return RunPlan(out, taps, hist, phases, taps_total, plan, count, Dot);
}

#endif  // CORVIN_HAS_SSE_KERNELS

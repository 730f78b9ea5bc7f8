// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The classic engine's inner loops: single-precision dot products in a portable, an SSE and an SSE3
// build, chosen once by the processor's features. One family serves both directions; the plain form
// goes by two names, because each direction's hosts know it by its own.
//
// Contract of the SSE builds: counts are taken up to the next multiple of 4, so arrays are readable
// (and zero) to there. Plain form: `b` on a 16-byte boundary. Phase and planned forms: the history
// rows on 16-byte boundaries, the taps anywhere. Sums are reordered within a build, never between
// runs; two builds may differ in the last bits.

#ifndef CORVIN_CLASSIC_FOUNDATION_KERNELS_H_
#define CORVIN_CLASSIC_FOUNDATION_KERNELS_H_

#include <atomic>
#include <cstdint>

#include "corvin.h"

/// One output sample of a planned batch.
struct DOT8Dec_DATA {
  std::int32_t hist;  ///< index into the array of history pointers
  std::int32_t tap;   ///< index of the first tap to use
};
using DOT8_DATA = DOT8Dec_DATA;

/// *out = sum of a[i] * b[i] for i < n.
using Dot8Plain = void (*)(float* out, const float* a, const float* b, int n);

/// One output for each phase j < phases for which pos + j is divisible by step, in order; with
/// K = taps_total / phases the sum over k < K of hist[j][k] * taps[k] for j = 0 and of
/// hist[j][k] * taps[k + 1] for later phases. Returns the number of outputs; 0 when phases or step
/// is below 1.
using Dot8Phase = int (*)(float* out, const float* taps, float** hist, int phases, int taps_total,
                          int pos, int step);

/// out[i] = sum over k < K of hist[plan[i].hist][k] * taps[plan[i].tap + k] for i < count. Returns
/// count, or 0 when count or phases is below 1.
using Dot8Planned = int (*)(float* out, const float* taps, float** hist, int phases, int taps_total,
                            DOT8Dec_DATA* plan, int count);

CORVIN_API void dot8_normal0(float* out, const float* a, const float* b, int n);
CORVIN_API void dot8_normal(float* out, const float* a, const float* b, int n);
CORVIN_API int dot8_normal2(float* out, const float* taps, float** hist, int phases, int taps_total,
                            int pos, int step);
CORVIN_API int dot8_normal3(float* out, const float* taps, float** hist, int phases, int taps_total,
                            DOT8Dec_DATA* plan, int count);

#if defined(__i386__) || defined(__x86_64__)
#define CORVIN_HAS_SSE_KERNELS 1

CORVIN_API void dot8_sse0(float* out, const float* a, const float* b, int n);
CORVIN_API void dot8_sse(float* out, const float* a, const float* b, int n);
CORVIN_API int dot8_sse2(float* out, const float* taps, float** hist, int phases, int taps_total,
                         int pos, int step);
CORVIN_API int dot8_sse3a(float* out, const float* taps, float** hist, int phases, int taps_total,
                          DOT8Dec_DATA* plan, int count);

CORVIN_API void dot8_sse30(float* out, const float* a, const float* b, int n);
CORVIN_API void dot8_sse3(float* out, const float* a, const float* b, int n);
CORVIN_API int dot8_sse32(float* out, const float* taps, float** hist, int phases, int taps_total,
                          int pos, int step);
CORVIN_API int dot8_sse33(float* out, const float* taps, float** hist, int phases, int taps_total,
                          DOT8Dec_DATA* plan, int count);
#endif

// What the latest job found and chose. Atomic, since jobs of several threads may store (always the
// same values) at once; each stage takes its copy when it is built.
CORVIN_API extern std::atomic<unsigned char> g_bSSE;
CORVIN_API extern std::atomic<unsigned char> g_bSSE3;
CORVIN_API extern std::atomic<Dot8Plain> dot8;
CORVIN_API extern std::atomic<Dot8Plain> dot8_0;
CORVIN_API extern std::atomic<Dot8Phase> dot8_2;
CORVIN_API extern std::atomic<Dot8Planned> dot8_3;

/// Queries the processor and stores the flags and pointers above.
CORVIN_API void SelectKernels();

#endif  // CORVIN_CLASSIC_FOUNDATION_KERNELS_H_

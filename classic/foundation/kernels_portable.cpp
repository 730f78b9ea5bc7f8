// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The plain build: the family's model, and all there is on processors without SSE.

#include "classic/foundation/kernel_loops.h"

namespace {

/// The leading n mod 4 products one at a time, then groups of four in an association that is part
/// of the result.
float Dot(const float* a, const float* b, int n) {
  float acc = 0.0f;
  int i = 0;
  for (; i < n % 4; ++i) acc += a[i] * b[i];
  for (; i < n; i += 4) {
    const float p0 = a[i] * b[i];
    const float p1 = a[i + 1] * b[i + 1];
    const float p2 = a[i + 2] * b[i + 2];
    const float p3 = a[i + 3] * b[i + 3];
    acc = p3 + ((p1 + p2) + (p0 + acc));
  }
  return acc;
}

}  // namespace

void dot8_normal0(float* out, const float* a, const float* b, int n) { *out = Dot(a, b, n); }

void dot8_normal(float* out, const float* a, const float* b, int n) { *out = Dot(a, b, n); }

int dot8_normal2(float* out, const float* taps, float** hist, int phases, int taps_total, int pos,
                 int step) {
  // Later phases read row 0 here, unlike in the other builds: hosts without SSE get the bytes that
  // this build has always given.
  return RunPhases(out, taps, hist, phases, taps_total, pos, step, Dot, [](int) { return 0; });
}

int dot8_normal3(float* out, const float* taps, float** hist, int phases, int taps_total,
                 DOT8Dec_DATA* plan, int count) {
  return RunPlan(out, taps, hist, phases, taps_total, plan, count, Dot);
}

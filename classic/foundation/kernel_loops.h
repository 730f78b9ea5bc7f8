// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The phase and planned forms over any plain dot product: which outputs to make, shared by all
// builds. `Dot` is called as dot(row, taps, count).

#ifndef CORVIN_CLASSIC_FOUNDATION_KERNEL_LOOPS_H_
#define CORVIN_CLASSIC_FOUNDATION_KERNEL_LOOPS_H_

#include <cstdint>

#include "classic/foundation/kernels.h"

/// `later_row(j)` names the history row that phase j > 0 reads.
template <class Dot, class LaterRow>
inline int RunPhases(float* out, const float* taps, float** hist, int phases, int taps_total,
                     int pos, int step, Dot dot, LaterRow later_row) {
  if (phases < 1 || step < 1) return 0;
  const int count = taps_total / phases;
  int first = 0;
  while (first < phases && (static_cast<std::int64_t>(pos) + first) % step != 0) ++first;
  int written = 0;
  for (std::int64_t j = first; j < phases; j += step) {
    out[written++] = j == 0 ? dot(hist[0], taps, count)
                            : dot(hist[later_row(static_cast<int>(j))], taps + 1, count);
  }
  return written;
}

template <class Dot>
inline int RunPlan(float* out, const float* taps, float** hist, int phases, int taps_total,
                   const DOT8Dec_DATA* plan, int count, Dot dot) {
  if (count < 1 || phases < 1) return 0;
  const int length = taps_total / phases;
  for (int i = 0; i < count; ++i) out[i] = dot(hist[plan[i].hist], taps + plan[i].tap, length);
  return count;
}

#endif  // CORVIN_CLASSIC_FOUNDATION_KERNEL_LOOPS_H_

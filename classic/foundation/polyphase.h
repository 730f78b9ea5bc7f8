// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Polyphase filtering by L / M, the same in both directions: the coefficient sets of a prototype
// and the schedule that says which set makes which output sample.

#ifndef CORVIN_CLASSIC_FOUNDATION_POLYPHASE_H_
#define CORVIN_CLASSIC_FOUNDATION_POLYPHASE_H_

#include <vector>

#include "classic/foundation/aligned_storage.h"
#include "classic/foundation/kernels.h"

/// The kernels read rows in whole vectors: work buffers are this many floats longer than needed.
inline constexpr int kVectorSlack = 8;

/// Coefficient sets on 32-byte boundaries, zero behind the last tap.
class PolyphaseSets {
 public:
  /// Splits `taps` taps into `phases` sets of taps / phases, times `gain`: set 0 takes every
  /// phases-th tap from the first, set k every phases-th from tap phases - k.
  void Make(const float* prototype, int taps, int phases, double gain);

  float** rows() { return rows_.data(); }

 private:
  AlignedFloats storage_;
  std::vector<float*> rows_;
};

/// One entry per output sample of `inputs` input samples up-sampled by l and decimated by m: those
/// at positions l * i + p divisible by m. Phases between an input sample and the next are computed
/// from the window that ends at the next one.
std::vector<DOT8Dec_DATA> MakePhaseSchedule(int l, int m, int inputs);

#endif  // CORVIN_CLASSIC_FOUNDATION_POLYPHASE_H_

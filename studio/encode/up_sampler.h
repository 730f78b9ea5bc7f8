// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Runs the stages of a plan over work items. An item is two neighbouring spans of one channel; it
// has no state, so items may be done in any order, grouping and thread.

#ifndef CORVIN_STUDIO_ENCODE_UP_SAMPLER_H_
#define CORVIN_STUDIO_ENCODE_UP_SAMPLER_H_

#include <vector>

#include "studio/kernels/kernels.h"
#include "studio/math/aligned_array.h"
#include "studio/plan/encode_plan.h"

namespace corvin::studio {

/// Frames that an item reads from its first span's start, and samples that it makes.
inline std::size_t item_frames(const EncodePlan& plan) {
  return plan.hop_frames + plan.span_frames();
}
inline std::size_t item_samples(const EncodePlan& plan) { return 2 * plan.hop_samples; }

/// The scratch memory of one thread. `plan` and the kernels outlive it.
class UpSampler {
 public:
  UpSampler(const EncodePlan& plan, const Kernels& kernels);

  /// Converts 1 .. items_at_once() items side by side.
  /// @param in   in[items]: item_frames() frames each, finite, +-1.0 at full scale
  /// @param out  out[items]: item_samples() samples each at an eighth of the DSD rate, +-1.0 at
  ///             full modulation
  void run(const double* const* in, double* const* out, std::size_t items);

  std::size_t items_at_once() const { return kernels_.spectral->lanes; }

 private:
  const EncodePlan& plan_;
  Kernels kernels_;
  std::size_t columns_;
  std::vector<double*> places_;  // one for each column
  AlignedArray<double> work_;
  AlignedArray<double> result_;
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_ENCODE_UP_SAMPLER_H_

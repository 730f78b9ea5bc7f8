// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Runs the stages of a plan over work items. An item is two neighbouring spans of one channel; it
// has no state, so items may be done in any order, grouping and thread.

#ifndef CORVIN_STUDIO_DECODE_SPAN_FILTER_H_
#define CORVIN_STUDIO_DECODE_SPAN_FILTER_H_

#include <cstdint>
#include <vector>

#include "studio/kernels/kernels.h"
#include "studio/math/aligned_array.h"
#include "studio/plan/decode_plan.h"

namespace corvin::studio {

/// Bytes that an item reads from its first span's start, and frames that it makes.
inline std::size_t item_bytes(const DecodePlan& plan) { return plan.hop_bytes + plan.span_bytes; }
inline std::size_t item_frames(const DecodePlan& plan) { return 2 * plan.hop_frames; }

/// The scratch memory of one thread. `plan` and the kernels outlive it.
class SpanFilter {
 public:
  SpanFilter(const DecodePlan& plan, const Kernels& kernels);

  /// Filters 1 .. items_at_once() items side by side.
  /// @param in   in[items]: item_bytes() bytes each
  /// @param out  out[items]: item_frames() samples each, +-1.0 at full scale
  void run(const std::uint8_t* const* in, double* const* out, std::size_t items);

  std::size_t items_at_once() const { return kernels_.spectral->lanes; }

 private:
  void fold();

  const DecodePlan& plan_;
  Kernels kernels_;
  std::size_t columns_;
  std::vector<const std::uint8_t*> streams_;  // one for each column
  std::vector<const std::uint8_t*> slice_;    // the same, moved to a slice
  std::vector<double*> places_;
  AlignedArray<std::int32_t> rows_;
  AlignedArray<double> work_;
  AlignedArray<double> result_;
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_DECODE_SPAN_FILTER_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The filter of one pair of rates, made from its plan: what the file job and the buffer-mode engine
// both run. Numbers only, no threads.

#ifndef CORVIN_CLASSIC_DECODE_CONVERSION_FILTER_H_
#define CORVIN_CLASSIC_DECODE_CONVERSION_FILTER_H_

#include <vector>

#include "classic/decode/rate_plan.h"
#include "classic/foundation/aligned_storage.h"
#include "classic/foundation/kernels.h"
#include "classic/foundation/polyphase.h"

/// Whether a conversion can be built: 1 <= dsd_rate <= 98304000, pcm_rate from dsd_rate / 16384 to
/// dsd_rate, 8, 16, 24 or 32 bits.
bool IsConvertible(int dsd_rate, int pcm_rate, int bits);

struct ConversionFilter {
  /// Designs the filter for IsConvertible() rates and stores its length in DEFTAPS; the caller
  /// holds DesignLock(). Throws std::bad_alloc.
  void Design(int dsd_rate, int pcm_rate);

  RatePlan plan{};
  int taps = 0;             ///< of the prototype
  AlignedFloats prototype;  ///< what the fallback runs
  PolyphaseSets sets;       ///< what a planned pair runs, by `schedule`
  std::vector<DOT8Dec_DATA> schedule;
  int delay_frames = 0;  ///< output frames that the filter needs to get going
};

#endif  // CORVIN_CLASSIC_DECODE_CONVERSION_FILTER_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// From a pair of rates to taps.

#include "classic/decode/conversion_filter.h"

#include <cmath>

#include "classic/decode/design_state.h"
#include "classic/foundation/lowpass_design.h"

namespace {

constexpr double kStopBandDb = 90.0;
constexpr int kMaxDsdRate = 98304000;
constexpr int kMaxRatio = 16384;

}  // namespace

bool IsConvertible(int dsd_rate, int pcm_rate, int bits) {
  return dsd_rate >= 1 && dsd_rate <= kMaxDsdRate && pcm_rate >= 1 && pcm_rate <= dsd_rate &&
         dsd_rate / pcm_rate <= kMaxRatio && (bits == 8 || bits == 16 || bits == 24 || bits == 32);
}

void ConversionFilter::Design(int dsd_rate, int pcm_rate) {
  plan = PlanRates(dsd_rate, pcm_rate);
  CFIRFilter design(plan.tap_budget);
  taps = design.Init(dsd_rate, static_cast<double>(plan.design_factor) * dsd_rate, pcm_rate * 0.5,
                     plan.design_factor * 8, kStopBandDb);
  DEFTAPS = taps;
  prototype = MakeAlignedFloats(static_cast<std::size_t>(taps) +
                                static_cast<std::size_t>(plan.interpolation));
  design.CreateCoeffs(prototype.get(), static_cast<float>(plan.tap_scale));
  delay_frames = static_cast<int>(std::lround(taps * 0.5 / plan.decimation));
  if (!plan.polyphase) return;
  sets.Make(prototype.get(), taps, plan.interpolation, plan.phase_gain);
  schedule = MakePhaseSchedule(plan.interpolation, plan.decimation, plan.block_samples);
}

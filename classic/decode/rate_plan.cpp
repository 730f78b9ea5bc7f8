// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Choice of the plan: same family by powers of two, cross family by table, otherwise the fallback.

#include "classic/decode/rate_plan.h"

#include <algorithm>

#include "classic/decode/rate_plan_table.h"

namespace {

constexpr int kBlockSamples = 4096;
constexpr int kSameFamilyTapBudget = 65536;
constexpr int kFallbackTapBudget = 8192;

/// rate == base * 2^k for some k in 0..max_power.
bool IsOctaveOf(long long rate, long long base, int max_power) {
  for (int k = 0; k <= max_power; ++k)
    if (rate == base << k) return true;
  return false;
}

double SameFamilyTrim(bool family_48, int dsd_rate, int pcm_rate) {
  if (family_48) {
    if (pcm_rate == 48000)
      return dsd_rate == 3072000    ? 1.05
             : dsd_rate == 6144000  ? 0.93
             : dsd_rate == 12288000 ? 0.85
                                    : 1.0;
    return dsd_rate == 3072000 || dsd_rate == 6144000 ? 0.96 : dsd_rate == 12288000 ? 0.95 : 1.0;
  }
  if (pcm_rate == 44100) return dsd_rate == 2822400 ? 1.05 : dsd_rate == 11289600 ? 0.905 : 1.0;
  return dsd_rate == 2822400 || dsd_rate == 5644800 ? 0.96 : dsd_rate == 11289600 ? 0.95 : 1.0;
}

double PhaseGain(int design_factor, double trim, int dsd_rate, int pcm_rate) {
  double gain = 2.0 / (design_factor * 8.0) * trim;
  if (dsd_rate >= 5644800 && pcm_rate <= 88199) gain *= dsd_rate * 2.657312925170068e-7;
  return gain;
}

/// Blocks of the fallback: whole bytes, and long enough that none is without an output sample,
/// since an empty block would end the stream.
void SizeFallbackBlocks(RatePlan& plan, int dsd_rate, int pcm_rate) {
  const int ratio = dsd_rate / pcm_rate;
  plan.block_samples = (std::max(kBlockSamples, 2 * ratio) + 7) / 8 * 8;
  plan.block_outputs =
      static_cast<int>(static_cast<long long>(plan.block_samples) * pcm_rate / dsd_rate) + 1;
}

}  // namespace

RatePlan PlanRates(int dsd_rate, int pcm_rate) {
  const bool dsd_48 = IsOctaveOf(dsd_rate, 48000, 11);
  const bool pcm_48 = IsOctaveOf(pcm_rate, 48000, 6);
  const int ratio = dsd_rate / pcm_rate;
  RatePlan plan{};

  if (dsd_48 == pcm_48) {
    plan.interpolation = 1;
    plan.decimation = ratio;
    plan.polyphase = IsOctaveOf(dsd_rate, pcm_rate, 8);
    plan.design_factor = 1;
    plan.tap_scale = 1;
    plan.tap_budget = kSameFamilyTapBudget;
    plan.phase_gain = PhaseGain(1, SameFamilyTrim(dsd_48, dsd_rate, pcm_rate), dsd_rate, pcm_rate);
    if (plan.polyphase) {
      plan.block_samples = kBlockSamples;
      plan.block_outputs = kBlockSamples / ratio;
    } else {
      SizeFallbackBlocks(plan, dsd_rate, pcm_rate);
    }
    return plan;
  }

  for (const CrossFamilyRow& row : kCrossFamilyRows) {
    if (row.dsd_rate != dsd_rate || row.pcm_rate != pcm_rate) continue;
    plan.interpolation = row.interpolation;
    plan.decimation = row.decimation;
    plan.polyphase = true;
    plan.design_factor = row.interpolation;
    plan.tap_scale = row.interpolation;
    plan.tap_budget = row.tap_budget;
    plan.phase_gain = PhaseGain(row.interpolation, row.gain_trim, dsd_rate, pcm_rate);
    plan.block_samples = row.block_samples;
    plan.block_outputs = row.block_outputs;
    return plan;
  }

  // A cross-family pair without a plan: designed for `ratio` phases but run at the DSD rate, with
  // no level correction and a delay counted as if nothing were decimated. Kept, since hosts that
  // use such pairs have come to terms with what comes out.
  plan.interpolation = 1;
  plan.decimation = 1;
  plan.polyphase = false;
  plan.design_factor = ratio;
  plan.tap_scale = ratio;
  plan.tap_budget = kFallbackTapBudget;
  plan.phase_gain = 1.0;
  SizeFallbackBlocks(plan, dsd_rate, pcm_rate);
  return plan;
}

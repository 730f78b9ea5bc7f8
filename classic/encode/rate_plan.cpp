// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Choice of the plan: same family by a rule, cross family by table.

#include "classic/encode/rate_plan.h"

#include "classic/encode/rate_plan_table.h"

namespace {

bool IsOctaveOf48k(long long rate, int max_power) {
  for (int k = 0; k <= max_power; ++k)
    if (rate == 48000LL << k) return true;
  return false;
}

double SameFamilyLevel(int dsd_rate, int pcm_rate) {
  // PCM rates as octaves above 44100 or 48000; any other counts as the lowest.
  int octave = 0;
  for (int k = 1; k <= 4; ++k)
    if (pcm_rate == 44100 << k || pcm_rate == 48000 << k) octave = k;
  constexpr double kDsd64[] = {1.4, 1.2, 0.4, 0.2, 0.2};
  constexpr double kDsd128[] = {1.4, 1.2, 1.2, 0.4, 0.4};
  switch (dsd_rate) {
    case 2822400:
    case 3072000:
      return kDsd64[octave];
    case 5644800:
    case 6144000:
      return kDsd128[octave];
    case 11289600:
    case 12288000:
      return 1.2;
    default:
      return 1.0;
  }
}

}  // namespace

EncodePlan PlanEncode(int dsd_rate, int pcm_rate) {
  const int ratio = dsd_rate / pcm_rate;
  if (IsOctaveOf48k(dsd_rate, 10) != IsOctaveOf48k(pcm_rate, 4)) {
    for (const EncodeRow& row : kEncodeRows)
      if (row.dsd_rate == dsd_rate && row.pcm_rate == pcm_rate)
        return {row.interpolation, row.decimation, row.block_frames, row.level};
    return {ratio, 1, 512, 1.0};
  }
  EncodePlan plan{ratio, 1, 320, SameFamilyLevel(dsd_rate, pcm_rate)};
  if (dsd_rate != pcm_rate) {
    plan.interpolation *= 8;
    plan.decimation = 8;
  }
  if (pcm_rate == 705600 || pcm_rate == 768000) {
    plan.interpolation *= 2;
    plan.decimation *= 2;
    plan.block_frames = 620;
  }
  return plan;
}

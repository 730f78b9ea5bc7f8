// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What a pair of rates asks of a DSD to PCM job: factors, block sizes, filter design, level.
// Numbers only; the job builds from them.

#ifndef CORVIN_CLASSIC_DECODE_RATE_PLAN_H_
#define CORVIN_CLASSIC_DECODE_RATE_PLAN_H_

struct RatePlan {
  int interpolation;  ///< L
  int decimation;     ///< M: pcmRate = dsdRate * L / M where the pair is planned
  bool polyphase;     ///< planned; otherwise the fallback filters at the kept input positions
  int design_factor;  ///< D: the prototype is designed at D * dsdRate with 8 * D phases
  int tap_scale;      ///< multiplies every tap of the prototype
  int tap_budget;
  double phase_gain;  ///< multiplies the taps of each polyphase set
  int block_samples;  ///< input samples per channel that the schedule covers
  int block_outputs;  ///< output samples per channel that come of them, at most
};

/// The plan for a pair of rates in Hz, 1 <= pcm_rate <= dsd_rate.
RatePlan PlanRates(int dsd_rate, int pcm_rate);

#endif  // CORVIN_CLASSIC_DECODE_RATE_PLAN_H_

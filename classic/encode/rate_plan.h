// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What a pair of rates asks of a PCM to DSD job. Numbers only; the job builds from them.

#ifndef CORVIN_CLASSIC_ENCODE_RATE_PLAN_H_
#define CORVIN_CLASSIC_ENCODE_RATE_PLAN_H_

struct EncodePlan {
  int interpolation;  ///< L
  int decimation;     ///< M
  int block_frames;   ///< PCM frames that the schedule covers
  double level;       ///< level factor
};

/// The plan for a pair of rates in Hz, 1 <= pcm_rate <= dsd_rate.
EncodePlan PlanEncode(int dsd_rate, int pcm_rate);

#endif  // CORVIN_CLASSIC_ENCODE_RATE_PLAN_H_

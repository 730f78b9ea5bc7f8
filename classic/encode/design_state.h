// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The process-wide design of PCM to DSD jobs. A job holds EncodeDesignLock() while it plans,
// designs and builds its stages, each of which takes what it needs then; nothing reads it later.
// The modulators' states belong to the jobs.

#ifndef CORVIN_CLASSIC_ENCODE_DESIGN_STATE_H_
#define CORVIN_CLASSIC_ENCODE_DESIGN_STATE_H_

#include <atomic>
#include <mutex>

#include "corvin.h"

CORVIN_API extern std::atomic<int> iSamples;            ///< PCM frames in a block of the plan
CORVIN_API extern std::atomic<int> oversampling;        ///< L
CORVIN_API extern std::atomic<int> DEFTAPS_PCMtoDSD;    ///< filter length at the up-sampled rate
CORVIN_API extern std::atomic<float> normalize_factor;  ///< level factor / L
/// One row of modulator state per channel: all zero, as every job starts.
CORVIN_API extern double g_D[8][8];

std::unique_lock<std::mutex> EncodeDesignLock();

#endif  // CORVIN_CLASSIC_ENCODE_DESIGN_STATE_H_

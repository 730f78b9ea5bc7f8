// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Storage of the process-wide design.

#include "classic/encode/design_state.h"

std::atomic<int> iSamples = 512;
std::atomic<int> oversampling = 64;
std::atomic<int> DEFTAPS_PCMtoDSD = 1024;
std::atomic<float> normalize_factor = 64.0f;
double g_D[8][8] = {};

std::unique_lock<std::mutex> EncodeDesignLock() {
  static std::mutex mutex;
  return std::unique_lock(mutex);
}

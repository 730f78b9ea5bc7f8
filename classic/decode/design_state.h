// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The process-wide design of DSD to PCM jobs. A job holds DesignLock() while it designs its filter
// and builds its stages, each of which takes what it needs then; nothing reads it later.

#ifndef CORVIN_CLASSIC_DECODE_DESIGN_STATE_H_
#define CORVIN_CLASSIC_DECODE_DESIGN_STATE_H_

#include <atomic>
#include <mutex>

#include "corvin.h"

/// Prototype filter length of the latest job.
CORVIN_API extern std::atomic<int> DEFTAPS;

std::unique_lock<std::mutex> DesignLock();

#endif  // CORVIN_CLASSIC_DECODE_DESIGN_STATE_H_

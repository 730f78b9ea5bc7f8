// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Storage of the process-wide design.

#include "classic/decode/design_state.h"

std::atomic<int> DEFTAPS = 1024;

std::unique_lock<std::mutex> DesignLock() {
  static std::mutex mutex;
  return std::unique_lock(mutex);
}

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Limits a measurement to the first processors of the machine.

#ifndef CORVIN_BENCH_PROCESSORS_H_
#define CORVIN_BENCH_PROCESSORS_H_

#ifdef __linux__
#include <sched.h>
#endif

/// While it lives, this thread and those that it starts run on the first `count` processors. Does
/// nothing on systems without processor affinity.
class ProcessorLimit {
 public:
  explicit ProcessorLimit([[maybe_unused]] int count) {
#ifdef __linux__
    sched_getaffinity(0, sizeof before_, &before_);
    cpu_set_t limited;
    CPU_ZERO(&limited);
    for (int i = 0; i < count; ++i) CPU_SET(i, &limited);
    sched_setaffinity(0, sizeof limited, &limited);
#endif
  }
  ProcessorLimit(const ProcessorLimit&) = delete;
  ProcessorLimit& operator=(const ProcessorLimit&) = delete;
  ~ProcessorLimit() {
#ifdef __linux__
    sched_setaffinity(0, sizeof before_, &before_);
#endif
  }

#ifdef __linux__
 private:
  cpu_set_t before_;
#endif
};

#endif  // CORVIN_BENCH_PROCESSORS_H_

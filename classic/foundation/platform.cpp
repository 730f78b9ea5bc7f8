// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What the conversions take from the operating system: the number of processors, a wait that keeps
// a host's event loop alive, and the logging hook.

#include "classic/foundation/platform.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>

#include "corvin.h"

#if defined(__APPLE__)
#include <CoreFoundation/CoreFoundation.h>
#include <sys/sysctl.h>
#elif defined(__linux__)
#include <sched.h>
#endif

unsigned ProcessorCount() {
#if defined(__APPLE__)
  unsigned count = 0;
  std::size_t length = sizeof count;
  if (sysctlbyname("hw.ncpu", &count, &length, nullptr, 0) == 0 && count > 0) return count;
#elif defined(__linux__)
  // The processors that this process may run on: in a container fewer than the machine has.
  cpu_set_t allowed;
  if (sched_getaffinity(0, sizeof allowed, &allowed) == 0) {
    const int count = CPU_COUNT(&allowed);
    if (count > 0) return static_cast<unsigned>(count);
  }
#endif
  return std::max(1u, std::thread::hardware_concurrency());
}

extern "C" {

unsigned GetCPU_GPU_Cores(int perThread) {
  if (perThread < 1) return 1;
  const auto wanted = static_cast<unsigned>(perThread);
  return std::max(ProcessorCount(), wanted) / wanted;
}

void ProgressWaitNS(float seconds) {
  if (!(seconds > 0.0f)) return;
#if defined(__APPLE__)
  // A run loop without sources returns at once; the sleep makes up the rest.
  const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  CFRunLoopRunInMode(kCFRunLoopDefaultMode, static_cast<double>(seconds), false);
  std::this_thread::sleep_until(end);
#else
  // A day at most, so that an infinite wait cannot overflow the clock.
  std::this_thread::sleep_for(std::chrono::duration<double>(std::fmin(seconds, 86400.0f)));
#endif
}

void WriteLog(const char*) {}

}  // extern "C"

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Which build of the kernels this processor runs.

#include "classic/foundation/kernels.h"

#ifdef CORVIN_HAS_SSE_KERNELS
#include <cpuid.h>
#endif

std::atomic<unsigned char> g_bSSE = 0;
std::atomic<unsigned char> g_bSSE3 = 0;
std::atomic<Dot8Plain> dot8 = dot8_normal;
std::atomic<Dot8Plain> dot8_0 = dot8_normal0;
std::atomic<Dot8Phase> dot8_2 = dot8_normal2;
std::atomic<Dot8Planned> dot8_3 = dot8_normal3;

void SelectKernels() {
#ifdef CORVIN_HAS_SSE_KERNELS
  unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
  const bool known = __get_cpuid(1, &eax, &ebx, &ecx, &edx) != 0;
  const bool sse = known && (edx >> 25 & 1) != 0;
  const bool sse3 = known && (ecx & 1) != 0;
  g_bSSE = sse;
  g_bSSE3 = sse3;
  dot8 = sse3 ? dot8_sse3 : sse ? dot8_sse : dot8_normal;
  dot8_0 = sse3 ? dot8_sse30 : sse ? dot8_sse0 : dot8_normal0;
  dot8_2 = sse3 ? dot8_sse32 : sse ? dot8_sse2 : dot8_normal2;
  dot8_3 = sse3 ? dot8_sse33 : sse ? dot8_sse3a : dot8_normal3;
#endif
}

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Every build of the kernels that this processor runs.

#ifndef CORVIN_TESTS_SUPPORT_KERNEL_BUILDS_H_
#define CORVIN_TESTS_SUPPORT_KERNEL_BUILDS_H_

#include <cstdint>
#include <cstdio>
#include <vector>

#include "studio/kernels/kernels.h"

namespace corvin::studio {

/// The feature masks that make each build the chosen one.
inline constexpr std::uint32_t kMasks[] = {0, kCpuSse2, kCpuSse2 | kCpuAvx2,
                                           kCpuSse2 | kCpuAvx2 | kCpuAvx512};

/// Kernels of the builds that this processor runs.
inline std::vector<Kernels> all_builds() {
  std::vector<Kernels> builds;
  for (std::uint32_t mask : kMasks) {
    if ((mask & ~detected_features()) == 0) {
      builds.push_back(choose_kernels(mask));
    } else {
      std::printf("[ SKIPPED  ] the processor lacks features of mask %u\n", mask);
    }
  }
  return builds;
}

}  // namespace corvin::studio

#endif  // CORVIN_TESTS_SUPPORT_KERNEL_BUILDS_H_

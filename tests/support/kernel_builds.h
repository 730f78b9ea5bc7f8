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

/// For each instruction set that this processor has, the mask that makes its builds the chosen ones.
inline std::vector<std::uint32_t> kernel_masks() {
  std::vector<std::uint32_t> masks;
  for (const InstructionSet& set : instruction_sets()) {
    if ((set.mask() & ~detected_features()) == 0) {
      masks.push_back(set.mask());
    } else {
      std::printf("[ SKIPPED  ] the processor lacks %s\n", set.name);
    }
  }
  return masks;
}

/// Kernels of the builds that this processor runs.
inline std::vector<Kernels> all_builds() {
  std::vector<Kernels> builds;
  for (std::uint32_t mask : kernel_masks()) builds.push_back(choose_kernels(mask));
  return builds;
}

}  // namespace corvin::studio

#endif  // CORVIN_TESTS_SUPPORT_KERNEL_BUILDS_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The builds of each kernel, and the choice among them. All builds of a kernel return the same
// bits, so the choice changes the speed alone.
//
// A kernel is a contract <kernel>.h with a type <Kernel>Variant, whose first member is the
// instruction set of the build, and a constant <kernel>_<set> in each <kernel>_<set>.cpp. The build
// system lists the files and writes builds<>() for every kernel.

#ifndef CORVIN_STUDIO_KERNELS_BUILDS_H_
#define CORVIN_STUDIO_KERNELS_BUILDS_H_

#include <cstdint>
#include <span>

#include "studio/kernels/instruction_sets.h"

namespace corvin::studio {

/// Every build of a kernel that this library holds.
template <typename Variant>
std::span<const Variant* const> builds();

/// The build of the strongest set that the processor has and `mask` allows. The portable build
/// needs nothing, so there always is one.
template <typename Variant>
const Variant& best_build(std::uint32_t mask) {
  const std::uint32_t features = detected_features() & mask;
  const Variant* best = nullptr;
  for (const Variant* build : builds<Variant>()) {
    if ((build->set.feature & ~features) != 0) continue;
    if (best == nullptr || build->set.feature > best->set.feature) best = build;
  }
  return *best;
}

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_KERNELS_BUILDS_H_

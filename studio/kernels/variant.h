// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What every build of every kernel says of itself, and the choice among builds. All builds of a
// kernel return the same bits, so the choice changes the speed alone.

#ifndef CORVIN_STUDIO_KERNELS_VARIANT_H_
#define CORVIN_STUDIO_KERNELS_VARIANT_H_

#include <cstdint>

namespace corvin::studio {

/// Processor features that builds ask for, as bits of a mask.
enum CpuFeature : std::uint32_t {
  kCpuSse2 = 1,
  kCpuAvx2 = 2,
  kCpuAvx512 = 4,        ///< the F, VL, DQ and BW groups
  kCpuNever = 1u << 31,  ///< no processor has it: a build that this compilation leaves out
};

struct VariantInfo {
  const char* name = "";
  int rank = -1;                    ///< the highest that the processor runs is taken
  std::uint32_t needs = kCpuNever;  ///< features, all of them needed
};

/// Features of this processor that its operating system lets programs use.
std::uint32_t detected_features();

/// The build of highest rank in `variants` whose needs lie within `features`. The portable build
/// needs nothing, so there always is one.
template <typename Variant, int kCount>
const Variant& best_variant(const Variant* const (&variants)[kCount], std::uint32_t features) {
  const Variant* best = nullptr;
  for (const Variant* variant : variants) {
    if ((variant->info.needs & ~features) != 0) continue;
    if (best == nullptr || variant->info.rank > best->info.rank) best = variant;
  }
  return *best;
}

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_KERNELS_VARIANT_H_

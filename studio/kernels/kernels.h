// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// One build of each kernel of the rate conversions.

#ifndef CORVIN_STUDIO_KERNELS_KERNELS_H_
#define CORVIN_STUDIO_KERNELS_KERNELS_H_

#include <cstddef>
#include <cstdint>

#include "studio/kernels/bit_fir.h"
#include "studio/kernels/fold_fir.h"
#include "studio/kernels/interpolate.h"
#include "studio/kernels/quantise.h"
#include "studio/kernels/spectral.h"

namespace corvin::studio {

struct Kernels {
  const BitFirVariant* bit_fir;
  const FoldFirVariant* fold_fir;
  const SpectralVariant* spectral;
  const QuantiseVariant* quantise;
  const InterpolateVariant* interpolate;
};

/// The best builds among those that the processor runs and `mask` allows.
inline Kernels choose_kernels(std::uint32_t mask) {
  return {&best_build<BitFirVariant>(mask), &best_build<FoldFirVariant>(mask),
          &best_build<SpectralVariant>(mask), &best_build<QuantiseVariant>(mask),
          &best_build<InterpolateVariant>(mask)};
}

/// The widest build whose vectors are not wider than `columns`.
template <typename Variant>
const Variant& widest_build(std::uint32_t mask, std::size_t columns) {
  const std::uint32_t features = detected_features() & mask;
  const Variant* widest = nullptr;
  for (const Variant* build : builds<Variant>()) {
    if ((build->set.feature & ~features) != 0 || build->lanes > columns) continue;
    if (widest == nullptr || build->lanes > widest->lanes) widest = build;
  }
  return *widest;
}

/// The same for at most `items` items at once. A vector's idle lanes cost as much as those in use, so
/// of the spectral builds the narrowest that takes them all, and short filters for its columns.
inline Kernels choose_kernels(std::uint32_t mask, std::size_t items) {
  Kernels kernels = choose_kernels(mask);
  for (const SpectralVariant* build : builds<SpectralVariant>()) {
    const bool runs = (build->set.feature & ~(detected_features() & mask)) == 0;
    if (runs && build->lanes >= items && build->lanes < kernels.spectral->lanes) {
      kernels.spectral = build;
    }
  }
  const std::size_t columns = std::size_t{2} * kernels.spectral->lanes;
  kernels.fold_fir = &widest_build<FoldFirVariant>(mask, columns);
  kernels.interpolate = &widest_build<InterpolateVariant>(mask, columns);
  return kernels;
}

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_KERNELS_KERNELS_H_

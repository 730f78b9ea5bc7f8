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

/// The same for at most `items` items at once. A vector's idle lanes cost as much as those in use, so
/// of the spectral builds the narrowest that takes them all, and a short filter for its columns.
inline Kernels choose_kernels(std::uint32_t mask, std::size_t items) {
  Kernels kernels = choose_kernels(mask);
  const std::uint32_t features = detected_features() & mask;
  const auto runs = [features](const auto* build) { return (build->set.feature & ~features) == 0; };
  for (const SpectralVariant* build : builds<SpectralVariant>()) {
    if (runs(build) && build->lanes >= items && build->lanes < kernels.spectral->lanes) {
      kernels.spectral = build;
    }
  }
  const unsigned columns = 2 * kernels.spectral->lanes;
  for (const FoldFirVariant* build : builds<FoldFirVariant>()) {
    const bool fits = build->lanes <= columns && kernels.fold_fir->lanes > columns;
    const bool is_wider = build->lanes <= columns && build->lanes > kernels.fold_fir->lanes;
    if (runs(build) && (fits || is_wider)) kernels.fold_fir = build;
  }
  return kernels;
}

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_KERNELS_KERNELS_H_

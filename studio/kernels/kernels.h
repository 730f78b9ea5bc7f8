// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// One build of each kernel of the rate conversions.

#ifndef CORVIN_STUDIO_KERNELS_KERNELS_H_
#define CORVIN_STUDIO_KERNELS_KERNELS_H_

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

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_KERNELS_KERNELS_H_

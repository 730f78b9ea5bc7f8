// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Makes the spectral kernel's shape: two transforms and the factors of the bins that they share.

#ifndef CORVIN_STUDIO_PLAN_SPECTRAL_SHAPE_H_
#define CORVIN_STUDIO_PLAN_SPECTRAL_SHAPE_H_

#include <cstddef>

#include "studio/kernels/spectral.h"

namespace corvin::studio {

/// A shape whose factors are all 0.
SpectralShape make_spectral_shape(std::size_t forward_points, std::size_t inverse_points);

/// Gives bin `bin`, below half the points of both transforms, the factor re + i im, turned so that
/// the output comes `advance` input rows early, and its mirror image the conjugate.
void set_bin(SpectralShape& shape, std::size_t bin, double re, double im, double advance);

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_PLAN_SPECTRAL_SHAPE_H_

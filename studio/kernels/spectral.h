// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The steep filter and the last rate change in one: overlap-save over spans, forward transform,
// product with the filter's response on the bins that are kept, inverse transform of another size.
//
// Every lane of a vector is a transform of its own, with one real span in the real part and the
// next one in the imaginary part (the response belongs to a real kernel, so they never mix). A row
// is one point of all transforms: the lanes' real parts, then their imaginary parts. Lanes never
// meet, so builds of any width return the same bits; no fused operations.

#ifndef CORVIN_STUDIO_KERNELS_SPECTRAL_H_
#define CORVIN_STUDIO_KERNELS_SPECTRAL_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "studio/kernels/builds.h"
#include "studio/math/fft_plan.h"

namespace corvin::studio {

struct SpectralShape {
  FftPlan forward;
  FftPlan inverse;
  /// For each place of the inverse transform's digit-reversed order: the place of the same bin in
  /// the forward transform's, and the (real, imaginary) factor.
  std::vector<std::uint32_t> source;
  std::vector<double> response;
  std::size_t first_row = 0;  ///< first valid output of a span
  std::size_t hop = 0;        ///< valid outputs of a span
};

/// A transform of `lanes` sequences side by side, in place.
using Transform = void (*)(const FftPlan& plan, double* rows);

/// Filters 2 x lanes spans.
/// @param input   input[forward.points][2 x lanes], or null when `work` holds them as double
/// @param work    work[forward.points][2 x lanes], overwritten; 64-byte aligned
/// @param result  result[inverse.points][2 x lanes], overwritten; 64-byte aligned
/// @param out     out[lanes]: place for 2 x hop samples, the spans one after the other; null for
///                an idle lane. Null altogether: the spans stay in `result`, the first ones in the
///                upper half of each row and the second ones in the lower, valid from first_row on
using Spectral = void (*)(const SpectralShape& shape, const std::int32_t* input, double* work,
                          double* result, double* const* out);

struct SpectralVariant {
  InstructionSet set;
  unsigned lanes = 1;
  /// Decimation in frequency: natural to digit-reversed order.
  Transform to_bins = nullptr;
  /// Decimation in time: digit-reversed to natural order, the same forward sign. Exchange real and
  /// imaginary parts before and after for the inverse; unscaled.
  Transform from_bins = nullptr;
  Spectral run = nullptr;
};

template <>
std::span<const SpectralVariant* const> builds<SpectralVariant>();

/// The plain build, which filter design uses so that designs never depend on the processor.
extern const SpectralVariant spectral_portable;

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_KERNELS_SPECTRAL_H_

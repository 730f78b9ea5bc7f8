// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Short interpolation: every phase of a polyphase filter over rows of columns, each column to a
// place of its own in time order.
//
//   out[c][i x phases + d] = sum over t < depth, in that order, of taps[t][d] x rows[i + t][c],
//                            beginning with the first product.
//
// Products and sums are IEEE double without fused operations: the same bits from every build.

#ifndef CORVIN_STUDIO_KERNELS_INTERPOLATE_H_
#define CORVIN_STUDIO_KERNELS_INTERPOLATE_H_

#include <cstddef>

#include "studio/kernels/builds.h"

namespace corvin::studio {

/// @param rows     rows[count + depth - 1][columns], aligned to the build's vector
/// @param columns  any count; the fast way takes multiples of the vector
/// @param taps     taps[depth][phases]
/// @param phases   1, 2, 4, 8 or 16
/// @param count    rows of input to interpolate between
/// @param out      out[columns]: places for count x phases samples, null for an idle column
using Interpolate = void (*)(const double* rows, std::size_t columns, const double* taps,
                             std::size_t phases, std::size_t depth, std::size_t count,
                             double* const* out);

struct InterpolateVariant {
  InstructionSet set;
  unsigned lanes = 1;  ///< columns of a vector; where rows are not whole vectors it is slow
  Interpolate run = nullptr;
};

template <>
std::span<const InterpolateVariant* const> builds<InterpolateVariant>();

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_KERNELS_INTERPOLATE_H_

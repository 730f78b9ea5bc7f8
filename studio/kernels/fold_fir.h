// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Second decimation, of long ratios only: a short symmetric filter over rows of int32 columns.
//
//   out[k][c] = sum over t < taps / 2, in that order from 0.0, of
//               half[t] x double(x[kD + t][c] + x[kD + taps - 1 - t][c]),
//               and for an odd count the middle tap's product last.
//
// The two samples are added as integers, so |x| <= 2^30; products and sums are IEEE double without
// fused operations: the same bits from every build.

#ifndef CORVIN_STUDIO_KERNELS_FOLD_FIR_H_
#define CORVIN_STUDIO_KERNELS_FOLD_FIR_H_

#include <cstddef>
#include <cstdint>

#include "studio/kernels/builds.h"

namespace corvin::studio {

/// @param rows     rows[(count - 1) x decimation + taps][columns], 64-byte aligned
/// @param columns  any count; the fast way takes multiples of the build's vector
/// @param half     the first (taps + 1) / 2 taps
/// @param out      out[count][columns], 64-byte aligned
using FoldFir = void (*)(const std::int32_t* rows, std::size_t columns, const double* half,
                         std::size_t taps, std::size_t decimation, double* out, std::size_t count);

struct FoldFirVariant {
  InstructionSet set;
  unsigned lanes = 1;  ///< columns of a vector; where rows are not whole vectors it is slow
  FoldFir run = nullptr;
};

template <>
std::span<const FoldFirVariant* const> builds<FoldFirVariant>();

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_KERNELS_FOLD_FIR_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// First decimation: an integer filter read straight from bytes of one-bit samples.
//
// A table holds, for each value of each byte of a step, the sums that the byte adds to the next
// `lanes` outputs. An accumulator row collects them; its first lanes are finished outputs, and the
// rest move down by as many. Everything is exact int32 (the table's builder bounds all partial
// sums), so the order of additions is free and every build returns the same numbers.

#ifndef CORVIN_STUDIO_KERNELS_BIT_FIR_H_
#define CORVIN_STUDIO_KERNELS_BIT_FIR_H_

#include <cstddef>
#include <cstdint>

#include "studio/kernels/builds.h"
#include "studio/math/aligned_array.h"

namespace corvin::studio {

struct BitFirTable {
  unsigned bytes_per_step = 0;      ///< 1, 2 or 4
  unsigned outputs_per_step = 0;    ///< 1, or 2 or 4 when a step is one byte
  unsigned lanes = 0;               ///< 8 or 12; 8 only with four bytes a step
  unsigned row_stride = 0;          ///< int32 from row to row, the kernel's wish; >= lanes
  AlignedArray<std::int32_t> rows;  ///< [byte of the step][value][row_stride], zero beyond lanes

  /// Steps before the first wanted output whose bytes reach into it.
  unsigned warm_steps() const { return (lanes - 1) / outputs_per_step; }
};

/// Filters the streams of up to `columns` columns.
/// @param in       in[columns]: first byte of each stream's warm-up, with (warm_steps() + steps) x
///                 bytes_per_step bytes readable; null for a column to leave as it is
/// @param steps    steps to produce, outputs_per_step rows each
/// @param out      out[rows][columns] int32, 4-byte aligned
using BitFir = void (*)(const BitFirTable& table, const std::uint8_t* const* in,
                        std::size_t columns, std::size_t steps, std::int32_t* out);

struct BitFirVariant {
  InstructionSet set;
  unsigned row_stride_12 = 12;  ///< row stride this build reads fastest with 12 lanes
  BitFir run = nullptr;
};

template <>
std::span<const BitFirVariant* const> builds<BitFirVariant>();

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_KERNELS_BIT_FIR_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The plain reference.

#include "studio/kernels/bit_fir.h"

namespace corvin::studio {
namespace {

void run_stream(const BitFirTable& table, const std::uint8_t* in, std::size_t columns,
                std::size_t steps, std::int32_t* out) {
  constexpr unsigned kMaxLanes = 12;
  std::int32_t sums[kMaxLanes + 4] = {};
  const std::size_t warm = table.warm_steps();
  const unsigned emitted = table.outputs_per_step;
  for (std::size_t step = 0; step < warm + steps; ++step) {
    for (unsigned byte = 0; byte < table.bytes_per_step; ++byte) {
      const std::int32_t* row = &table.rows[(byte * 256u + *in++) * table.row_stride];
      for (unsigned lane = 0; lane < table.lanes; ++lane) sums[lane] += row[lane];
    }
    if (step >= warm) {
      for (unsigned i = 0; i < emitted; ++i, out += columns) *out = sums[i];
    }
    for (unsigned lane = 0; lane < kMaxLanes; ++lane) sums[lane] = sums[lane + emitted];
  }
}

void run(const BitFirTable& table, const std::uint8_t* const* in, std::size_t columns,
         std::size_t steps, std::int32_t* out) {
  for (std::size_t column = 0; column < columns; ++column) {
    if (in[column] != nullptr) run_stream(table, in[column], columns, steps, out + column);
  }
}

}  // namespace

extern const BitFirVariant bit_fir_portable = {kPortable, 12, run};

}  // namespace corvin::studio

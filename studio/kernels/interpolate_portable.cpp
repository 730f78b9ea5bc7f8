// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The plain reference.

#include "studio/kernels/interpolate.h"

namespace corvin::studio {
namespace {

void run(const double* rows, std::size_t columns, const double* taps, std::size_t phases,
         std::size_t depth, std::size_t count, double* const* out) {
  for (std::size_t c = 0; c < columns; ++c) {
    if (out[c] == nullptr) continue;
    for (std::size_t i = 0; i < count; ++i) {
      for (std::size_t d = 0; d < phases; ++d) {
        double sum = taps[d] * rows[i * columns + c];
        for (std::size_t t = 1; t < depth; ++t) {
          sum += taps[t * phases + d] * rows[(i + t) * columns + c];
        }
        out[c][i * phases + d] = sum;
      }
    }
  }
}

}  // namespace

extern const InterpolateVariant interpolate_portable = {kPortable, 1, run};

}  // namespace corvin::studio

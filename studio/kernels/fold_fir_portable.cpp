// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The plain reference.

#include "studio/kernels/fold_fir.h"

namespace corvin::studio {
namespace {

void run(const std::int32_t* rows, std::size_t columns, const double* half, std::size_t taps,
         std::size_t decimation, double* out, std::size_t count) {
  for (std::size_t k = 0; k < count; ++k) {
    const std::int32_t* first = rows + k * decimation * columns;
    for (std::size_t c = 0; c < columns; ++c) {
      double sum = 0.0;
      for (std::size_t t = 0; t < taps / 2; ++t) {
        sum += half[t] * (first[t * columns + c] + first[(taps - 1 - t) * columns + c]);
      }
      if (taps % 2 != 0) sum += half[taps / 2] * first[taps / 2 * columns + c];
      *out++ = sum;
    }
  }
}

}  // namespace

extern const FoldFirVariant fold_fir_portable = {kPortable, 1, run};

}  // namespace corvin::studio

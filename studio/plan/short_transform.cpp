// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/plan/short_transform.h"

#include <algorithm>
#include <numeric>

#include "studio/math/fft_plan.h"

namespace corvin::studio {

TransformSizes short_transform(std::size_t in, std::size_t out, std::size_t overlap,
                               std::size_t grain, std::size_t most_hop) {
  const std::size_t unit = std::lcm(in, grain);
  const std::size_t most = std::max(most_hop, unit);
  TransformSizes best = {};
  std::size_t best_work = 0;
  std::size_t best_hop = 0;
  for (std::size_t k = overlap / in; k * in < overlap + most + unit || best_hop == 0; ++k) {
    if (k * in < overlap + unit || !has_fft_plan(k * in) || !has_fft_plan(k * out)) continue;
    // An even one that is smaller has no bin at the cut but the one right on it, which is left out.
    // The last bin of an odd one, beside it, lets a minimum phase ring to -147 dB.
    if (out < in && k * out % 2 != 0) continue;
    const std::size_t hop = (k * in - overlap) / unit * unit;
    const std::size_t work = fft_work(k * in) + fft_work(k * out);
    if (best_hop != 0 && (hop > most || work * best_hop >= best_work * hop)) continue;
    best = {k * in, k * out};
    best_work = work;
    best_hop = hop;
  }
  return best;
}

}  // namespace corvin::studio

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//

#include "studio/encode/up_sampler.h"

#include <algorithm>

namespace corvin::studio {

UpSampler::UpSampler(const EncodePlan& plan, const Kernels& kernels)
    : plan_(plan),
      kernels_(kernels),
      columns_(2 * kernels.spectral->lanes),
      places_(columns_),
      work_(plan.shape.forward.points * columns_),
      result_(plan.shape.inverse.points * columns_) {}

void UpSampler::run(const double* const* in, double* const* out, std::size_t items) {
  const std::size_t lanes = items_at_once();
  const std::size_t points = plan_.span_frames();
  std::fill(places_.begin(), places_.end(), nullptr);
  for (std::size_t lane = 0; lane < items; ++lane) {
    const double* first = in[lane];
    const double* second = first + plan_.hop_frames;
    for (std::size_t i = 0; i < points; ++i) {
      work_[i * columns_ + lane] = first[i];
      work_[i * columns_ + lanes + lane] = second[i];
    }
    places_[lanes + lane] = out[lane];
    places_[lane] = out[lane] + plan_.hop_samples;
  }
  const SpectralShape& shape = plan_.shape;
  kernels_.spectral->run(shape, nullptr, work_.data(), result_.data(), nullptr);
  kernels_.interpolate->run(result_.data() + shape.first_row * columns_, columns_,
                            plan_.taps.data(), plan_.factor(), plan_.depth, shape.hop,
                            places_.data());
}

}  // namespace corvin::studio

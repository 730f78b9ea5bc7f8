// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/convert/true_peak.h"

#include <algorithm>
#include <new>

namespace corvin::cli {

TruePeak::TruePeak(uint32_t rate_hz, uint32_t channels)
    : state_(ebur128_init(channels, rate_hz, EBUR128_MODE_TRUE_PEAK)) {
  if (!state_) throw std::bad_alloc();
}

void TruePeak::add(const double* frames, size_t count) {
  if (ebur128_add_frames_double(state_.get(), frames, count) != EBUR128_SUCCESS)
    throw std::bad_alloc();
}

double TruePeak::largest() const {
  double largest = 0;
  for (unsigned channel = 0; channel < state_->channels; ++channel) {
    double peak = 0;
    ebur128_true_peak(state_.get(), channel, &peak);
    largest = std::max(largest, peak);
  }
  return largest;
}

}  // namespace corvin::cli

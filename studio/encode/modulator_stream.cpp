// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//

#include "studio/encode/modulator_stream.h"

#include <algorithm>
#include <cmath>

#include "studio/modulator/noise_shapers.h"

namespace corvin::studio {
namespace {

// Largest absolute value; four side by side hide the comparisons' latency.
double peak_of(const double* in, std::size_t samples) {
  constexpr std::size_t kWidth = 4;
  double peak[kWidth] = {};
  std::size_t i = 0;
  for (; i + kWidth <= samples; i += kWidth) {
    for (std::size_t way = 0; way < kWidth; ++way) {
      const double size = std::fabs(in[i + way]);
      peak[way] = size > peak[way] ? size : peak[way];
    }
  }
  for (; i < samples; ++i) peak[0] = std::max(peak[0], std::fabs(in[i]));
  return std::max(std::max(peak[0], peak[1]), std::max(peak[2], peak[3]));
}

// Counts only where a part's peak says that there is something to count.
void measure(const double* in, std::size_t samples, double knee, ModulationTally& tally) {
  constexpr std::size_t kPart = 64;
  for (std::size_t at = 0; at < samples; at += kPart) {
    const std::size_t count = std::min(kPart, samples - at);
    const double peak = peak_of(in + at, count);
    tally.peak = std::max(tally.peak, peak);
    if (peak <= knee) continue;
    for (std::size_t i = at; i < at + count; ++i)
      tally.limited += std::fabs(in[i]) > knee ? 1u : 0u;
  }
}

}  // namespace

ModulatorStream::ModulatorStream(const ModulatorConfig& config)
    : channels_(static_cast<std::size_t>(config.channels)),
      knee_(shaper_design(config.grade, config.oversampling).knee),
      modulator_(config) {}

void ModulatorStream::run(const double* const* in, std::size_t samples, std::uint8_t* const* out,
                          ModulationTally& tally) {
  std::uint8_t* places[2] = {};
  for (std::size_t c = 0; c < channels_; ++c) {
    measure(in[c], samples, knee_, tally);
    tally.overload -= modulator_.overload_events(static_cast<int>(c));
    places[c] = std::copy_n(early_[c].data(), kept_, out[c]);
  }
  const std::size_t ready = kept_ + modulator_.modulate(in, samples, places);
  fed_ += samples;
  const auto due = static_cast<std::size_t>(bytes_after(fed_) - written_);
  written_ += due;
  kept_ = ready - due;
  for (std::size_t c = 0; c < channels_; ++c) {
    std::copy_n(out[c] + due, kept_, early_[c].data());
    tally.overload += modulator_.overload_events(static_cast<int>(c));
  }
}

void ModulatorStream::reset() {
  modulator_.reset();
  fed_ = written_ = 0;
  kept_ = 0;
}

}  // namespace corvin::studio

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/measure/loudness_meter.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <new>

namespace corvin::cli {
namespace {

constexpr double kSilence = -std::numeric_limits<double>::infinity();
constexpr unsigned kMomentaryLooks = 4;   // 0.4 s
constexpr unsigned kShortTermLooks = 30;  // 3 s

// What each speaker counts: those behind and beside the listener 1.5 dB more, low frequencies not.
int place_of(int bit) {
  switch (bit) {
    case 0:
      return EBUR128_LEFT;
    case 1:
      return EBUR128_RIGHT;
    case 2:
      return EBUR128_CENTER;
    case 3:
      return EBUR128_UNUSED;
    case 4:
    case 9:
      return EBUR128_LEFT_SURROUND;
    case 5:
    case 10:
      return EBUR128_RIGHT_SURROUND;
    default:
      return EBUR128_CENTER;
  }
}

std::optional<double> finite(double value) {
  return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

}  // namespace

LoudnessMeter::LoudnessMeter(uint32_t rate_hz, uint32_t channels, uint32_t speakers)
    : state_(ebur128_init(channels, rate_hz,
                          EBUR128_MODE_I | EBUR128_MODE_LRA | EBUR128_MODE_TRUE_PEAK)),
      step_(std::max(1u, rate_hz / 10)),
      most_momentary_(kSilence),
      most_short_term_(kSilence) {
  if (!state_) throw std::bad_alloc();
  if (std::popcount(speakers) != static_cast<int>(channels)) return;
  unsigned channel = 0;
  for (int bit = 0; bit < 32; ++bit)
    if ((speakers >> bit & 1) != 0) ebur128_set_channel(state_.get(), channel++, place_of(bit));
}

void LoudnessMeter::add(const double* frames, size_t count) {
  while (count > 0) {
    const size_t now = std::min(count, until_look_);
    if (ebur128_add_frames_double(state_.get(), frames, now) != EBUR128_SUCCESS)
      throw std::bad_alloc();
    frames += now * state_->channels;
    count -= now;
    until_look_ -= now;
    if (until_look_ == 0) look();
  }
}

void LoudnessMeter::look() {
  until_look_ = step_;
  ++looks_;
  double lufs = 0;
  if (looks_ >= kMomentaryLooks && ebur128_loudness_momentary(state_.get(), &lufs) == 0)
    most_momentary_ = std::max(most_momentary_, lufs);
  if (looks_ >= kShortTermLooks && ebur128_loudness_shortterm(state_.get(), &lufs) == 0)
    most_short_term_ = std::max(most_short_term_, lufs);
}

LoudnessFigures LoudnessMeter::figures() const {
  LoudnessFigures figures{.most_momentary_lufs = finite(most_momentary_),
                          .most_short_term_lufs = finite(most_short_term_)};
  double value = 0;
  if (ebur128_loudness_global(state_.get(), &value) == EBUR128_SUCCESS)
    figures.integrated_lufs = finite(value);
  // Of less than one window of 3 s it would be 0 whatever the sound.
  if (looks_ >= kShortTermLooks && figures.integrated_lufs &&
      ebur128_loudness_range(state_.get(), &value) == EBUR128_SUCCESS)
    figures.range_lu = finite(value);
  return figures;
}

double LoudnessMeter::true_peak(uint32_t channel) const {
  double peak = 0;
  ebur128_true_peak(state_.get(), channel, &peak);
  return peak;
}

}  // namespace corvin::cli

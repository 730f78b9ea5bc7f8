// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/convert/resampler.h"

#include <algorithm>
#include <new>

namespace corvin::cli {

Resampler::Resampler(uint32_t from_hz, uint32_t to_hz, uint32_t channels, corvin_phase phase)
    : from_hz_(from_hz), to_hz_(to_hz), channels_(channels) {
  const soxr_io_spec_t samples = soxr_io_spec(SOXR_FLOAT64_I, SOXR_FLOAT64_I);
  const soxr_quality_spec_t quality = soxr_quality_spec(
      SOXR_VHQ | (phase == CORVIN_MINIMUM_PHASE ? SOXR_MINIMUM_PHASE : SOXR_LINEAR_PHASE), 0);
  soxr_error_t error = nullptr;
  handle_.reset(soxr_create(from_hz, to_hz, channels, &error, &samples, &quality, nullptr));
  if (error || !handle_) throw std::bad_alloc();
}

std::span<const double> Resampler::run(std::span<const double> frames) {
  if (frames.empty()) return {};
  frames_in_ += frames.size() / channels_;
  return resample(frames.data(), frames.size() / channels_);
}

std::span<const double> Resampler::finish() {
  const auto rest = resample(nullptr, 0);
  // The library's own count may be off by one; what is missing there is silence behind the end.
  const uint64_t due = frames_for(frames_in_);
  const size_t before = static_cast<size_t>(frames_out_ - rest.size() / channels_);
  out_.resize(static_cast<size_t>(due > before ? due - before : 0) * channels_, 0.0);
  return out_;
}

uint64_t Resampler::frames_for(uint64_t frames) const {
  const uint64_t seconds = frames / from_hz_;
  return seconds * to_hz_ + (frames % from_hz_ * to_hz_ + from_hz_ - 1) / from_hz_;
}

std::span<const double> Resampler::resample(const double* frames, size_t count) {
  out_.clear();
  constexpr size_t kRoom = 1 << 14;
  for (;;) {
    const size_t at = out_.size();
    out_.resize(at + kRoom * channels_);
    size_t taken = 0, made = 0;
    if (soxr_process(handle_.get(), frames, count, &taken, out_.data() + at, kRoom, &made))
      throw std::bad_alloc();
    out_.resize(at + made * channels_);
    frames_out_ += made;
    if (frames) frames += taken * channels_;
    count -= taken;
    if (count == 0 && made < kRoom) return out_;
  }
}

}  // namespace corvin::cli

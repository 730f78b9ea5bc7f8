// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/convert/encoding.h"

#include <utility>

#include "studio/encode/encoder_settings.h"

namespace corvin::studio {
namespace {

constexpr std::size_t kBufferBytes = 1 << 18;

}  // namespace

corvin_encoder_settings encoder_settings(std::uint32_t pcm_rate, std::uint32_t format,
                                         const formats::SoundFormat& target,
                                         const corvin_convert_settings& settings) {
  corvin_encoder_settings result = default_encoder_settings();
  result.pcm_rate = pcm_rate;
  result.dsd_rate = target.rate_hz;
  result.channels = target.channels;
  result.format = format;
  result.modulator = settings.modulator;
  result.threads = settings.threads;
  result.kernel_mask = settings.kernel_mask;
  result.gain_db = settings.gain_db;
  result.phase = settings.phase;
  return result;
}

Encoding::Encoding(Encoder& encoder, std::size_t channels, std::size_t frame_bytes, Take take)
    : encoder_(encoder),
      frame_bytes_(frame_bytes),
      take_(std::move(take)),
      out_(channels, kBufferBytes / channels) {}

int Encoding::push(const void* data, std::size_t frames) {
  const auto* from = static_cast<const std::uint8_t*>(data);
  while (frames > 0) {
    std::size_t taken = 0;
    encoder_.push(from, frames, taken);
    from += taken * frame_bytes_;
    frames -= taken;
    frames_ += taken;
    if (const int status = drain(); status != CORVIN_OK) return status;
  }
  return CORVIN_OK;
}

int Encoding::finish() {
  encoder_.finish();
  return drain();
}

int Encoding::drain() {
  for (;;) {
    std::size_t bytes = 0;
    encoder_.pull_planar(out_.places(), out_.bytes(), bytes);
    if (bytes == 0) return CORVIN_OK;
    if (const int status = take_(out_.places(), bytes); status != CORVIN_OK) return status;
  }
}

void Encoding::tell(corvin_convert_report& report) const {
  corvin_encoder_report encoded = {};
  encoder_.report(encoded);
  report.frames = frames_;
  report.samples = encoded.samples;
  report.limited = encoded.limited;
  report.overloads = encoded.overloads;
  report.peak = encoded.peak;
}

}  // namespace corvin::studio

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/convert/pcm_chain.h"

#include "cli/files/pcm_kind.h"

namespace corvin::cli {

PcmChain::PcmChain(const Config& config) : config_(config) {
  const ConvertSettings& settings = config_.settings;
  if (config_.rate_hz != config_.engine_rate_hz) {
    resampler_.emplace(config_.engine_rate_hz, config_.rate_hz, config_.channels,
                       static_cast<corvin_phase>(settings.phase));
    QuantizerSettings wanted;
    wanted.pcm_rate = config_.rate_hz;
    wanted.channels = config_.channels;
    wanted.format = settings.format;
    wanted.dither = settings.dither;
    wanted.seed = settings.seed;
    quantizer_.emplace(wanted);
  }
  engine_frame_bytes_ = config_.channels * bytes_of(engine_format());
}

corvin_sample_format PcmChain::engine_format() const {
  return resampler_ ? CORVIN_F64 : static_cast<corvin_sample_format>(config_.settings.format);
}

std::span<const uint8_t> PcmChain::run(const void* frames, size_t count) {
  if (!resampler_) return {static_cast<const uint8_t*>(frames), count * engine_frame_bytes_};
  return quantize(resampler_->run({static_cast<const double*>(frames), count * config_.channels}));
}

std::span<const uint8_t> PcmChain::finish() {
  return resampler_ ? quantize(resampler_->finish()) : std::span<const uint8_t>();
}

uint64_t PcmChain::frames_for(uint64_t engine_frames) const {
  return resampler_ ? resampler_->frames_for(engine_frames) : engine_frames;
}

PcmLevel PcmChain::level(const corvin_convert_report& engine) const {
  if (!quantizer_) return {.frames = engine.frames, .clips = engine.clips, .peak = engine.peak};
  const corvin_quantizer_report report = quantizer_->report();
  return {.frames = report.frames, .clips = report.clips, .peak = report.peak};
}

std::span<const uint8_t> PcmChain::quantize(std::span<const double> frames) {
  out_.resize(frames.size() * bytes_of(static_cast<corvin_sample_format>(config_.settings.format)));
  quantizer_->run(frames.data(), frames.size() / config_.channels, out_.data());
  return out_;
}

}  // namespace corvin::cli

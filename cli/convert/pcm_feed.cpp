// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/convert/pcm_feed.h"

#include <algorithm>

#include "cli/words/measures.h"

namespace corvin::cli {
namespace {

constexpr size_t kFramesAtOnce = 1 << 13;

}  // namespace

PcmFeed::PcmFeed(PcmInput& input, const Config& config)
    : input_(input),
      config_(config),
      most_frames_(config.end > config.begin ? config.end - config.begin : 0),
      channels_(config.channel_map.empty() ? input.channels()
                                           : static_cast<uint32_t>(config.channel_map.size())),
      engine_rate_hz_(engine_rate_hz(input.rate_hz())) {
  skip(config.begin);
  if (engine_rate_hz_ == input.rate_hz()) return;
  resampler_.emplace(input.rate_hz(), engine_rate_hz_, channels_, config.phase);
  in_.resize(kFramesAtOnce * channels_);
}

std::optional<uint64_t> PcmFeed::declared_frames() const {
  const auto declared = input_.declared_frames();
  if (!declared) return {};
  const uint64_t behind = *declared - std::min(*declared, config_.begin);
  const uint64_t frames = std::min(behind, most_frames_);
  return resampler_ ? resampler_->frames_for(frames) : frames;
}

size_t PcmFeed::read(double* frames, size_t count) {
  return resampler_ ? read_resampled(frames, count) : read_file(frames, count);
}

size_t PcmFeed::read_file(double* frames, size_t count) {
  const auto due = static_cast<size_t>(std::min<uint64_t>(count, most_frames_ - frames_read_));
  size_t got = 0;
  if (config_.channel_map.empty()) {
    got = input_.read(std::span(frames, due * channels_));
  } else {
    all_channels_.resize(due * input_.channels());
    got = input_.read(all_channels_);
    for (size_t i = 0; i < got; ++i)
      for (const uint32_t channel : config_.channel_map)
        *frames++ = all_channels_[i * input_.channels() + channel];
  }
  frames_read_ += got;
  return got;
}

// By reading, which every kind of file can do exactly.
void PcmFeed::skip(uint64_t frames) {
  std::vector<double> skipped(kFramesAtOnce * input_.channels());
  while (frames > 0) {
    const auto due = static_cast<size_t>(std::min<uint64_t>(frames, kFramesAtOnce));
    const size_t got = input_.read(std::span(skipped).first(due * input_.channels()));
    if (got == 0) return;
    frames -= got;
  }
}

size_t PcmFeed::read_resampled(double* frames, size_t count) {
  const size_t channels = channels_;
  size_t done = 0;
  while (done < count) {
    if (ready_.empty()) {
      if (is_at_end_) break;
      const size_t got = read_file(in_.data(), kFramesAtOnce);
      is_at_end_ = got == 0;
      ready_ =
          is_at_end_ ? resampler_->finish() : resampler_->run(std::span(in_).first(got * channels));
      continue;
    }
    const size_t taken = std::min(count - done, ready_.size() / channels);
    std::copy_n(ready_.begin(), taken * channels, frames + done * channels);
    ready_ = ready_.subspan(taken * channels);
    done += taken;
  }
  return done;
}

}  // namespace corvin::cli

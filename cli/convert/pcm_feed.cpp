// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/convert/pcm_feed.h"

#include <algorithm>

#include "cli/words/measures.h"

namespace corvin::cli {
namespace {

constexpr size_t kFramesAtOnce = 1 << 13;

}  // namespace

PcmFeed::PcmFeed(PcmInput& input, uint64_t begin, uint64_t end, corvin_phase phase)
    : input_(input),
      most_frames_(end > begin ? end - begin : 0),
      engine_rate_hz_(engine_rate_hz(input.rate_hz())) {
  if (engine_rate_hz_ == input.rate_hz()) return;
  resampler_.emplace(input.rate_hz(), engine_rate_hz_, input.channels(), phase);
  in_.resize(kFramesAtOnce * input.channels());
}

std::optional<uint64_t> PcmFeed::declared_frames() const {
  const auto declared = input_.declared_frames();
  if (!declared) return {};
  const uint64_t frames = std::min(*declared, most_frames_);
  return resampler_ ? resampler_->frames_for(frames) : frames;
}

size_t PcmFeed::read(double* frames, size_t count) {
  return resampler_ ? read_resampled(frames, count) : read_file(frames, count);
}

size_t PcmFeed::read_file(double* frames, size_t count) {
  const auto due = static_cast<size_t>(std::min<uint64_t>(count, most_frames_ - frames_read_));
  const size_t got = input_.read(std::span(frames, due * input_.channels()));
  frames_read_ += got;
  return got;
}

size_t PcmFeed::read_resampled(double* frames, size_t count) {
  const size_t channels = input_.channels();
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

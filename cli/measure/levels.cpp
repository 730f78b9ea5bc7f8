// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/measure/levels.h"

#include <algorithm>
#include <cmath>

namespace corvin::cli {
namespace {

constexpr size_t kMostBlocks = 1024;
constexpr uint32_t kBlocksPerSecond = 200;
constexpr double kSinePower = 0.5;  // of full scale

}  // namespace

SampleMeter::SampleMeter(uint32_t rate_hz, uint32_t channels)
    : channels_(channels), block_frames_(std::max(1u, rate_hz / kBlocksPerSecond)) {}

void SampleMeter::add(const double* frames, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    for (Sums& one : channels_) {
      const double sample = *frames++;
      const double size = std::abs(sample);
      one.peak = std::max(one.peak, size);
      block_peak_ = std::max(block_peak_, size);
      one.squares += sample * sample;
      one.block_squares += sample * sample;
      one.sum += sample;
    }
    if (++in_block_ == block_frames_) end_block();
  }
  frames_ += count;
}

void SampleMeter::finish() {
  if (in_block_ > 0) end_block();
}

ChannelLevel SampleMeter::channel(uint32_t channel) const {
  if (frames_ == 0) return {};
  const Sums& sums = channels_[channel];
  const auto frames = static_cast<double>(frames_);
  return {.peak = sums.peak, .power = sums.squares / frames / kSinePower, .dc = sums.sum / frames};
}

void SampleMeter::end_block() {
  double most = 0;
  for (Sums& one : channels_) {
    most = std::max(most, one.block_squares);
    one.block_squares = 0;
  }
  blocks_.push_back(
      {.peak = block_peak_, .power = most / static_cast<double>(in_block_) / kSinePower});
  block_peak_ = 0;
  in_block_ = 0;
  if (blocks_.size() == kMostBlocks) join_blocks();
}

void SampleMeter::join_blocks() {
  for (size_t i = 0; i < kMostBlocks / 2; ++i) {
    const LevelBlock &a = blocks_[2 * i], &b = blocks_[2 * i + 1];
    blocks_[i] = {.peak = std::max(a.peak, b.peak), .power = (a.power + b.power) / 2};
  }
  blocks_.resize(kMostBlocks / 2);
  block_frames_ *= 2;
}

}  // namespace corvin::cli

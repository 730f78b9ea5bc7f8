// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Filtering a stream in blocks of the plan, each as far as it has come.

#include "classic/decode/buffer_channel.h"

#include <algorithm>
#include <cstring>

#include "classic/decode/bit_expansion.h"
#include "classic/decode/quantise.h"

namespace {

constexpr std::size_t kOutChannels = 2;

/// The input sample that an output sample follows: phases behind the first are computed from the
/// window that ends one sample later.
int InputOf(const DOT8Dec_DATA& entry) { return entry.hist == 0 ? entry.tap : entry.tap - 1; }

}  // namespace

BufferChannel::BufferChannel(const Config& config, ConversionFilter& filter)
    : config_(config),
      filter_(filter),
      planned_kernel_(dot8_3),
      plain_kernel_(dot8_0),
      history_floats_(static_cast<std::size_t>(filter.taps / filter.plan.interpolation)),
      work_(MakeAlignedFloats(history_floats_ +
                              static_cast<std::size_t>(filter.plan.block_samples) + kVectorSlack)),
      outputs_(MakeAlignedFloats(static_cast<std::size_t>(filter.plan.block_outputs))),
      skip_left_(filter.delay_frames) {
  start_.Reset(false);
  done_.Reset(false);
  thread_ = std::thread(&BufferChannel::Run, this);
}

BufferChannel::~BufferChannel() {
  ending_ = true;
  start_.Open();
  thread_.join();
}

void BufferChannel::Start(const unsigned char* dsd, std::size_t bytes, unsigned char* pcm) {
  dsd_ = dsd;
  bytes_ = bytes;
  pcm_ = pcm;
  start_.Open();
}

void BufferChannel::Run() {
  for (;;) {
    start_.Close();
    if (ending_) return;
    Convert();
    done_.Open();
  }
}

void BufferChannel::Convert() {
  const bool planned = filter_.plan.polyphase;
  const auto narrow = planned ? NarrowScale::kSingle : NarrowScale::kDouble;
  const auto sample_bytes = static_cast<std::size_t>(config_.bits / 8);
  for (std::size_t at = 0; at < bytes_;) {
    const auto room = static_cast<std::size_t>(filter_.plan.block_samples - filled_) / 8;
    const std::size_t count = std::min(bytes_ - at, room);
    ExpandBits(reinterpret_cast<const char*>(dsd_ + at), 1, count, config_.lsb_first,
               work_.get() + history_floats_ + filled_);
    at += count;
    filled_ += static_cast<int>(8 * count);
    const int made = planned ? FilterPlanned() : FilterFallback();
    const int skipped = std::min(made, skip_left_);
    skip_left_ -= skipped;
    const auto kept = static_cast<std::size_t>(made - skipped);
    Quantise(outputs_.get() + skipped, kept, config_.bits, config_.big_endian, narrow, kOutChannels,
             reinterpret_cast<char*>(pcm_));
    pcm_ += kept * kOutChannels * sample_bytes;
    if (filled_ == filter_.plan.block_samples) TurnBlock();
  }
}

int BufferChannel::FilterPlanned() {
  const std::size_t first = next_entry_;
  while (next_entry_ < filter_.schedule.size() && InputOf(filter_.schedule[next_entry_]) < filled_)
    ++next_entry_;
  return planned_kernel_(outputs_.get(), work_.get(), filter_.sets.rows(),
                         filter_.plan.interpolation, filter_.taps, filter_.schedule.data() + first,
                         static_cast<int>(next_entry_ - first));
}

int BufferChannel::FilterFallback() {
  int made = 0;
  for (long long at; (at = next_output_ / config_.pcm_rate) < filled_;
       next_output_ += config_.dsd_rate)
    plain_kernel_(outputs_.get() + made++, work_.get() + at, filter_.prototype.get(), filter_.taps);
  return made;
}

void BufferChannel::TurnBlock() {
  std::memmove(work_.get(), work_.get() + filled_, history_floats_ * sizeof(float));
  next_output_ -= static_cast<long long>(filled_) * config_.pcm_rate;
  next_entry_ = 0;
  filled_ = 0;
}

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/decode/decoder.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

#include "formats/bytes/bit_order.h"
#include "studio/decode/decoder_settings.h"
#include "studio/stream/stream_limits.h"

namespace corvin::studio {

int Decoder::create(const corvin_decoder_settings& settings, std::unique_ptr<Decoder>& decoder) {
  if (!in_range(settings)) return CORVIN_E_ARGUMENT;
  const Kernels kernels = choose_kernels(settings.kernel_mask);
  DecodePlanConfig config;
  config.dsd_rate = settings.dsd_rate;
  config.pcm_rate = settings.pcm_rate;
  config.pass_hz = settings.pass_hz;
  config.stop_hz = settings.stop_hz;
  config.phase = settings.phase == CORVIN_MINIMUM_PHASE ? Phase::kMinimum : Phase::kLinear;
  config.lsb_first = settings.bit_order == CORVIN_LSB_FIRST;
  config.row_stride_12 = kernels.bit_fir->row_stride_12;
  auto plan = make_decode_plan(config);
  if (!plan) return CORVIN_E_UNSUPPORTED;
  decoder.reset(new Decoder(settings, std::move(*plan), kernels));
  return CORVIN_OK;
}

Decoder::Decoder(const corvin_decoder_settings& settings, DecodePlan plan, const Kernels& kernels)
    : settings_(settings),
      plan_(std::move(plan)),
      most_bytes_(settings.length == 0 ? std::numeric_limits<std::uint64_t>::max()
                                       : formats::BytesOf(settings.length)),
      blocks_({settings.channels, settings.block_bytes}),
      ring_(DecodeStages::shape(settings, plan_), DecodeStages::pieces(settings, plan_),
            most_bytes_, formats::SilentByte(settings.bit_order == CORVIN_LSB_FIRST), stages_),
      stages_(settings, plan_, kernels) {}

// ---- In -----------------------------------------------------------------------------------------

// Takes bytes as long as there is room; place(channel, byte) is where a byte lies.
template <typename Place>
std::size_t Decoder::accept(std::size_t bytes, std::size_t stride, Place place) {
  return ring_.accept(
      bytes, [&](std::size_t channel, std::size_t first, std::size_t count, std::uint8_t* to) {
        formats::CopyBytes(place(channel, first), stride, to, 1, count, false);
        if (ring_.accepted() + count < most_bytes_) return;
        formats::SilenceBehind(settings_.length, settings_.bit_order == CORVIN_LSB_FIRST,
                               to[count - 1]);
      });
}

// Passes on a block that found no room; false when some of it is left.
bool Decoder::pass_on() {
  return blocks_.pass_on([this](auto... args) { return accept(args...); });
}

int Decoder::push(const std::uint8_t* data, std::size_t bytes, std::size_t& taken) {
  taken = 0;
  if (finishing_) return CORVIN_E_STATE;
  taken = blocks_.push(data, bytes, [this](auto... args) { return accept(args...); });
  return CORVIN_OK;
}

int Decoder::push_planar(const std::uint8_t* const* channels, std::size_t bytes,
                         std::size_t& taken) {
  taken = 0;
  if (finishing_) return CORVIN_E_STATE;
  if (!pass_on()) return CORVIN_OK;
  if (blocks_.holds_some()) return CORVIN_E_STATE;
  taken = accept(bytes, 1,
                 [&](std::size_t channel, std::size_t byte) { return channels[channel] + byte; });
  return CORVIN_OK;
}

void Decoder::finish() {
  if (finishing_) return;
  finishing_ = true;
  blocks_.end();
  settle();
}

// After finish: ends the stream behind what is left to pass on.
void Decoder::settle() {
  if (!finishing_ || ring_.ending() || !pass_on()) return;
  const std::uint64_t bytes = ring_.accepted();
  ring_.end(frames_of(bytes == most_bytes_ ? settings_.length : bytes * 8));
}

// ---- Out ----------------------------------------------------------------------------------------

// Has frames taken piece by piece: take(done, count).
template <typename Take>
std::size_t Decoder::drain(std::size_t frames, Take take) {
  return ring_.drain(frames, take, [this] { settle(); });
}

std::size_t Decoder::pull(void* out, std::size_t frames) {
  return drain(frames, [&](std::size_t done, std::size_t count) {
    stages_.write(ring_.slot(), ring_.drained(), count,
                  static_cast<std::uint8_t*>(out) + done * frame_bytes());
  });
}

std::size_t Decoder::pull_planar(void* const* out, std::size_t frames) {
  constexpr std::size_t kFrames = 64;
  std::uint8_t interleaved[kFrames * kMostChannels * sizeof(double)];
  const std::size_t bytes = stages_.sample_bytes();
  return drain(frames, [&](std::size_t done, std::size_t count) {
    for (std::size_t at = 0; at < count; at += kFrames) {
      const std::size_t part = std::min(count - at, kFrames);
      stages_.write(ring_.slot(), ring_.drained() + at, part, interleaved);
      for (std::size_t c = 0; c < settings_.channels; ++c) {
        std::uint8_t* place = static_cast<std::uint8_t*>(out[c]) + (done + at) * bytes;
        for (std::size_t i = 0; i < part; ++i) {
          std::memcpy(place + i * bytes, &interleaved[i * frame_bytes() + c * bytes], bytes);
        }
      }
    }
  });
}

void Decoder::reset() {
  stages_.reset();
  ring_.reset();
  blocks_.reset();
  finishing_ = false;
}

// ---- About it -----------------------------------------------------------------------------------

std::uint64_t Decoder::latency() const {
  // Right before a piece is complete, everything since the one before waits; a block of the input's
  // layout may wait on top.
  const std::uint64_t bytes = ring_.shape().in - ring_.shape().lead + settings_.block_bytes - 1;
  return frames_of(bytes * 8) + 1;
}

std::uint64_t Decoder::frames_of(std::uint64_t samples) const {
  return studio::frames_of(samples, settings_.dsd_rate, settings_.pcm_rate);
}

void Decoder::report(corvin_decoder_report& report) const {
  report.frames = ring_.given();
  report.clips = stages_.tally().clips;
  report.peak = stages_.tally().peak * stages_.gain();
}

}  // namespace corvin::studio

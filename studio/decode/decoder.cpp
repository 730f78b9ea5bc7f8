// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/decode/decoder.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "formats/bytes/bit_order.h"
#include "studio/decode/decoder_settings.h"
#include "studio/pcm/pack.h"
#include "studio/stream/sample_shift.h"
#include "studio/stream/stream_limits.h"

namespace corvin::studio {
namespace {

constexpr std::uint64_t kNoEnd = std::numeric_limits<std::uint64_t>::max();

std::uint64_t end_of(const corvin_decoder_settings& settings) {
  const bool ends = settings.length != 0 && settings.length < kNoEnd - settings.first_sample;
  return ends ? settings.first_sample + settings.length : kNoEnd;
}

// Bytes of the whole that a stretch up to `end` makes use of: up to its own last, or up to the last
// that the filters read.
std::uint64_t bytes_to(std::uint64_t end, const corvin_decoder_settings& settings,
                       const DecodePlan& plan) {
  if (end == kNoEnd) return kNoEnd;
  const std::uint64_t own = formats::BytesOf(end);
  const std::uint64_t frames = frames_of(end, settings.dsd_rate, settings.pcm_rate);
  if ((settings.context & CORVIN_CONTEXT_BEHIND) == 0 || frames == 0) return own;
  const std::uint64_t last_item = (frames - 1) / item_frames(plan);
  return std::max(own, last_item * 2 * plan.hop_bytes + item_bytes(plan) - plan.lead_bytes);
}

}  // namespace

int Decoder::create(const corvin_decoder_settings& settings, std::unique_ptr<Decoder>& decoder) {
  if (!in_range(settings)) return CORVIN_E_ARGUMENT;
  const Kernels kernels = settings.low_latency != 0
                              ? choose_kernels(settings.kernel_mask, settings.channels)
                              : choose_kernels(settings.kernel_mask);
  DecodePlanConfig config;
  config.dsd_rate = settings.dsd_rate;
  config.pcm_rate = settings.pcm_rate;
  config.pass_hz = settings.pass_hz;
  config.stop_hz = settings.stop_hz;
  config.phase = settings.phase == CORVIN_MINIMUM_PHASE ? Phase::kMinimum : Phase::kLinear;
  config.lsb_first = settings.bit_order == CORVIN_LSB_FIRST;
  config.low_latency = settings.low_latency != 0;
  config.row_stride_12 = kernels.bit_fir->row_stride_12;
  auto plan = make_decode_plan(config);
  if (!plan) return CORVIN_E_UNSUPPORTED;
  decoder.reset(new Decoder(settings, std::move(*plan), kernels));
  return CORVIN_OK;
}

Decoder::Decoder(const corvin_decoder_settings& settings, DecodePlan plan, const Kernels& kernels)
    : settings_(settings),
      plan_(std::move(plan)),
      lsb_first_(settings.bit_order == CORVIN_LSB_FIRST),
      shift_(static_cast<unsigned>(settings.first_sample % 8)),
      end_(end_of(settings)),
      most_bytes_(bytes_to(end_, settings, plan_)),
      blocks_({settings.channels, settings.block_bytes}),
      ring_(DecodeStages::shape(settings, plan_), DecodeStages::pieces(settings, plan_),
            most_bytes_, formats::SilentByte(lsb_first_), stages_),
      carried_(settings.channels),
      stages_(settings, plan_, kernels) {
  start_at(settings.first_sample);
}

// ---- In -----------------------------------------------------------------------------------------

// Takes bytes as long as there is room; place(channel, byte) is where a byte lies.
template <typename Place>
std::size_t Decoder::accept(std::size_t bytes, std::size_t stride, Place place) {
  const auto unused = static_cast<std::size_t>(std::min<std::uint64_t>(bytes, unused_));
  if (unused > 0) {
    unused_ -= unused;
    for (std::size_t c = 0; c < settings_.channels; ++c) carried_[c] = *place(c, unused - 1);
  }
  const auto store = [&](std::size_t channel, std::size_t first, std::size_t count,
                         std::uint8_t* to) {
    formats::CopyBytes(place(channel, unused + first), stride, to, 1, count, false);
    if (shift_ != 0) {
      carried_[channel] = shift_samples(carried_[channel], shift_, lsb_first_, count, to);
    }
    silence_behind_end(count, to[count - 1]);
  };
  return unused + ring_.accept(bytes - unused, store);
}

// Silences what stands behind the stretch in the last of `count` bytes that are next.
void Decoder::silence_behind_end(std::size_t count, std::uint8_t& last) const {
  const bool is_end =
      (settings_.context & CORVIN_CONTEXT_BEHIND) == 0 && ring_.accepted() + count == most_bytes_;
  if (is_end) formats::SilenceBehind(end_, lsb_first_, last);
}

// Passes on the samples of the last byte that are carried. False when there is no room.
bool Decoder::pass_on_carried() {
  const auto store = [&](std::size_t channel, std::size_t, std::size_t count, std::uint8_t* to) {
    *to = 0;
    shift_samples(carried_[channel], shift_, lsb_first_, 1, to);
    formats::SilenceBehind(shift_, lsb_first_, *to);
    silence_behind_end(count, *to);
  };
  return shift_ == 0 || unused_ > 0 || ring_.accept(1, store) == 1;
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
  const std::uint64_t bytes = ring_.accepted() - std::min(unused_, ring_.accepted());
  if (!pass_on_carried()) return;
  ring_.end(frames_of(bytes >= most_bytes_ ? end_ : std::min(end_, bytes * 8 + shift_)));
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
      std::uint8_t* places[kMostChannels];
      for (std::size_t c = 0; c < settings_.channels; ++c) {
        places[c] = static_cast<std::uint8_t*>(out[c]) + (done + at) * bytes;
      }
      split_frames(interleaved, settings_.channels, part, bytes, places);
    }
  });
}

// ---- Places in the whole ------------------------------------------------------------------------

int Decoder::seek(std::uint64_t sample) {
  if (sample < settings_.first_sample || sample > std::min(end_, kLastPlace)) {
    return CORVIN_E_ARGUMENT;
  }
  stages_.reset();
  blocks_.reset();
  finishing_ = false;
  start_at(sample);
  return CORVIN_OK;
}

void Decoder::reset() { seek(settings_.first_sample); }

// Begins with the item that makes the first frame which what is handed out depends on.
void Decoder::start_at(std::uint64_t sample) {
  using Place = std::int64_t;  // in bytes of the whole, before which the first item begins
  const std::uint64_t frame = frames_of(sample);
  std::uint64_t first_frame = frame / stages_.memory_frames() * stages_.memory_frames();
  if (!hears_before()) first_frame = std::max(first_frame, frames_of(settings_.first_sample));
  const std::uint64_t item = first_frame / item_frames(plan_);
  const Place begin =
      static_cast<Place>(item * ring_.shape().in_step) - static_cast<Place>(ring_.shape().lead);

  const Place pushed = static_cast<Place>((settings_.first_sample / 8 + byte_of(sample))) -
                       static_cast<Place>(preroll(sample));
  const Place first = std::max({pushed, begin, Place{0}});
  unused_ = static_cast<std::uint64_t>(first - pushed);
  // Silence, of which the first samples count where the stretch begins within a byte.
  std::fill(carried_.begin(), carried_.end(),
            placed_last(formats::SilentByte(lsb_first_), shift_, lsb_first_));
  PieceStart start;
  start.made = item * item_frames(plan_);
  start.given = frame;
  if (end_ != kNoEnd) start.end = frames_of(end_);
  start.in = static_cast<std::uint64_t>(first);
  start.silent = static_cast<std::size_t>(first - begin);
  ring_.restart(start);
}

// The byte of the stretch that holds a sample.
std::uint64_t Decoder::byte_of(std::uint64_t sample) const {
  return (sample - settings_.first_sample) / 8;
}

std::uint64_t Decoder::preroll(std::uint64_t sample) const {
  const std::uint64_t before = hears_before() ? formats::BytesOf(settings_.first_sample) : 0;
  return std::min(preroll(), before + byte_of(sample));
}

// The frame of a sample may be an item's last; that item reads from its lead on, one byte of which
// comes in two parts when bytes are shifted. The last frame, on the other side, may be an item's
// first.
std::uint64_t Decoder::preroll() const {
  const std::uint64_t memory = stages_.memory_frames() - 1;
  const std::uint64_t frame_bits = 8 * std::uint64_t{settings_.pcm_rate};
  const std::uint64_t remembered = (memory * settings_.dsd_rate + frame_bits - 1) / frame_bits;
  const std::uint64_t before = 2 * plan_.hop_bytes + plan_.lead_bytes + remembered;
  const std::uint64_t behind = item_bytes(plan_) - plan_.lead_bytes;
  return std::max(before, behind) + 1;
}

// ---- About it -----------------------------------------------------------------------------------

std::uint64_t Decoder::latency() const {
  // Right before a piece is complete, everything since the one before waits; a block of the input's
  // layout may wait on top.
  const std::uint64_t bytes =
      ring_.shape().in - ring_.shape().lead + settings_.block_bytes - 1 + (shift_ != 0 ? 1 : 0);
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

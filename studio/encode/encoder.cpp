// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/encode/encoder.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "formats/bytes/bit_order.h"
#include "studio/encode/encoder_settings.h"
#include "studio/math/exact_math.h"
#include "studio/pcm/sample_format.h"
#include "studio/pcm/sample_input.h"

namespace corvin::studio {
namespace {

constexpr std::uint64_t kUnknown = std::numeric_limits<std::uint64_t>::max();

}  // namespace

int Encoder::create(const corvin_encoder_settings& settings, std::unique_ptr<Encoder>& encoder) {
  if (!in_range(settings)) return CORVIN_E_ARGUMENT;
  EncodePlanConfig config;
  config.pcm_rate = settings.pcm_rate;
  config.dsd_rate = settings.dsd_rate;
  config.pass_hz = settings.pass_hz;
  config.stop_hz = settings.stop_hz;
  config.phase = settings.phase == CORVIN_MINIMUM_PHASE ? Phase::kMinimum : Phase::kLinear;
  config.low_latency = settings.low_latency != 0;
  auto chain = make_encode_chain(config, static_cast<ModulatorGrade>(settings.modulator),
                                 settings.kernel_mask);
  if (!chain) return CORVIN_E_UNSUPPORTED;
  const Kernels kernels = settings.low_latency != 0
                              ? choose_kernels(settings.kernel_mask, settings.channels)
                              : choose_kernels(settings.kernel_mask);
  encoder.reset(new Encoder(settings, std::move(*chain), kernels));
  return CORVIN_OK;
}

Encoder::Encoder(const corvin_encoder_settings& settings, EncodeChain chain, const Kernels& kernels)
    : settings_(settings),
      chain_(std::move(chain)),
      gain_(from_db(settings.gain_db)),
      length_samples_(kUnknown),
      ring_(EncodeStages::shape(settings, chain_.plan),
            EncodeStages::pieces(settings, chain_.modulator),
            settings.length == 0 ? std::numeric_limits<std::uint64_t>::max() : settings.length, 0.0,
            stages_),
      blocks_({settings.channels, settings.block_bytes},
              formats::SilentByte(settings.bit_order == CORVIN_LSB_FIRST)),
      stages_(settings, chain_, kernels) {}

// ---- In -----------------------------------------------------------------------------------------

// Takes frames as long as there is room; place(channel, frame) is where a sample lies.
template <typename Place>
std::size_t Encoder::accept(std::size_t frames, std::size_t stride, Place place) {
  return ring_.accept(
      frames, [&](std::size_t channel, std::size_t first, std::size_t count, double* to) {
        read_samples(place(channel, first), stride, count, settings_.format, gain_, to);
      });
}

int Encoder::push(const std::uint8_t* data, std::size_t frames, std::size_t& taken) {
  taken = 0;
  if (ring_.ending()) return CORVIN_E_STATE;
  const std::size_t width = sample_bytes(settings_.format);
  const std::size_t channels = settings_.channels;
  taken = accept(frames, channels * width, [&](std::size_t channel, std::size_t frame) {
    return data + (frame * channels + channel) * width;
  });
  return CORVIN_OK;
}

int Encoder::push_planar(const void* const* channels, std::size_t frames, std::size_t& taken) {
  taken = 0;
  if (ring_.ending()) return CORVIN_E_STATE;
  const std::size_t width = sample_bytes(settings_.format);
  taken = accept(frames, width, [&](std::size_t channel, std::size_t frame) {
    return static_cast<const std::uint8_t*>(channels[channel]) + frame * width;
  });
  return CORVIN_OK;
}

void Encoder::finish() {
  if (ring_.ending()) return;
  length_samples_ = samples_of(ring_.accepted());
  stages_.end(length_samples_);
  ring_.end(formats::BytesOf(length_samples_));
}

// ---- Out ----------------------------------------------------------------------------------------

// Copies `count` bytes of a channel, which the oldest piece has left, to every `stride`th place.
void Encoder::copy(std::size_t channel, std::size_t count, std::uint8_t* out,
                   std::size_t stride) const {
  const bool lsb_first = settings_.bit_order == CORVIN_LSB_FIRST;
  formats::CopyBytes(stages_.bytes(ring_.slot(), channel) + ring_.drained(), 1, out, stride, count,
                     lsb_first);
  if (!ring_.ends_with(count)) return;
  formats::SilenceBehind(length_samples_, lsb_first, out[(count - 1) * stride]);
}

std::size_t Encoder::pull(std::uint8_t* out, std::size_t bytes) {
  return blocks_.pull(out, bytes, ring_, [this](auto... args) { copy(args...); });
}

int Encoder::pull_planar(std::uint8_t* const* out, std::size_t bytes, std::size_t& done) {
  done = 0;
  if (blocks_.holds_some()) return CORVIN_E_STATE;
  done = ring_.drain(bytes, [&](std::size_t first, std::size_t count) {
    for (std::size_t c = 0; c < settings_.channels; ++c) copy(c, count, out[c] + first, 1);
  });
  return CORVIN_OK;
}

void Encoder::reset() {
  stages_.reset();
  ring_.reset();
  blocks_.reset();
  length_samples_ = kUnknown;
}

// ---- About it -----------------------------------------------------------------------------------

std::uint64_t Encoder::latency() const {
  // Right before a piece is complete, everything since the one before waits, and some of that in
  // the modulators; an unfinished block of the output's layout may wait on top.
  return samples_of(ring_.shape().in - ring_.shape().lead) +
         8 * (ring_.shape().delay + settings_.block_bytes - 1 +
              EncodeStages::spread_delay(settings_, chain_.plan));
}

std::uint64_t Encoder::samples_of(std::uint64_t frames) const {
  return studio::samples_of(frames, settings_.pcm_rate, settings_.dsd_rate);
}

void Encoder::report(corvin_encoder_report& report) const {
  const ModulationTally& tally = stages_.tally();
  report.samples = std::min(8 * ring_.given(), length_samples_);
  report.limited = tally.limited;
  report.overloads = tally.overload;
  report.peak = tally.peak * 2;  // full scale is 50 % modulation
}

std::string Encoder::describe() const {
  constexpr const char* kGrades[] = {"standard", "high", "best"};
  return chain_.plan.describe() + "modulator: " + kGrades[settings_.modulator] + ", " +
         std::to_string(settings_.dsd_rate) + " Hz\n";
}

}  // namespace corvin::studio

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/decode/quantizer.h"

#include <algorithm>
#include <limits>

#include "studio/kernels/kernels.h"
#include "studio/pcm/pack.h"
#include "studio/pcm/sample_format.h"
#include "studio/stream/stream_limits.h"

namespace corvin::studio {
namespace {

constexpr std::size_t kChunkFrames = 1024;
// Far above what any decoder makes, and far below what the kernels' sums take.
constexpr double kLargest = 65536;

bool in_range(const corvin_quantizer_settings& s) {
  // Comparisons that a NaN fails.
  return s.pcm_rate >= 8000 && s.pcm_rate <= 768000 && s.channels >= 1 &&
         s.channels <= kMostChannels && s.format <= kLastFormat &&
         s.dither <= CORVIN_DITHER_SHAPED && s.first_frame <= kLastPlace &&
         s.gain_db >= kLeastGainDb && s.gain_db <= kMostGainDb;
}

}  // namespace

corvin_quantizer_settings default_quantizer_settings() {
  corvin_quantizer_settings settings = {};
  settings.size = sizeof settings;
  settings.pcm_rate = 44100;
  settings.channels = 2;
  settings.format = CORVIN_S24;
  settings.dither = CORVIN_DITHER_TPDF;
  settings.kernel_mask = std::numeric_limits<std::uint32_t>::max();
  return settings;
}

int Quantizer::create(const corvin_quantizer_settings& settings,
                      std::unique_ptr<Quantizer>& quantizer) {
  if (!in_range(settings)) return CORVIN_E_ARGUMENT;
  quantizer.reset(new Quantizer(settings));
  return CORVIN_OK;
}

Quantizer::Quantizer(const corvin_quantizer_settings& settings)
    : settings_(settings),
      output_(settings, *choose_kernels(settings.kernel_mask).quantise),
      samples_(settings.channels * kChunkFrames),
      interleaved_(kChunkFrames * output_.frame_bytes()),
      place_(settings.first_frame) {
  for (std::size_t c = 0; c < settings.channels; ++c) {
    rows_.push_back(&samples_[c * kChunkFrames]);
  }
}

// Brings frames into rows_, chunk by chunk, from channel(c) on, every `stride`th number; write(first,
// count) then writes those of a chunk, if they are to be.
template <typename Channel, typename Write>
void Quantizer::in_chunks(std::size_t frames, std::size_t stride, Channel channel, bool writes,
                          Write write) {
  for (std::size_t done = 0; done < frames;) {
    const std::size_t count = std::min(frames - done, kChunkFrames);
    for (std::size_t c = 0; c < settings_.channels; ++c) {
      const double* from = channel(c) + done * stride;
      double* to = &samples_[c * kChunkFrames];
      for (std::size_t i = 0; i < count; ++i) {
        const double value = from[i * stride];
        to[i] = value == value ? std::clamp(value, -kLargest, kLargest) : 0.0;
      }
    }
    if (writes) {
      write(done, count);
      written_ += count;
    } else if (output_.is_serial()) {
      output_.pass_over(rows_.data(), place_, count);
    }
    place_ += count;
    done += count;
  }
}

void Quantizer::run(const double* in, std::size_t frames, void* out) {
  in_chunks(
      frames, settings_.channels, [in](std::size_t c) { return in + c; }, out != nullptr,
      [&](std::size_t first, std::size_t count) {
        output_.write(rows_.data(), place_, count,
                      static_cast<std::uint8_t*>(out) + first * output_.frame_bytes(), tally_);
      });
}

void Quantizer::run_planar(const double* const* in, std::size_t frames, void* const* out) {
  in_chunks(
      frames, 1, [in](std::size_t c) { return in[c]; }, out != nullptr,
      [&](std::size_t first, std::size_t count) {
        output_.write(rows_.data(), place_, count, interleaved_.data(), tally_);
        std::uint8_t* places[kMostChannels];
        for (std::size_t c = 0; c < settings_.channels; ++c) {
          places[c] = static_cast<std::uint8_t*>(out[c]) + first * output_.sample_bytes();
        }
        split_frames(interleaved_.data(), settings_.channels, count, output_.sample_bytes(),
                     places);
      });
}

void Quantizer::reset() {
  output_.reset();
  place_ = settings_.first_frame;
  written_ = 0;
  tally_ = {};
}

void Quantizer::report(corvin_quantizer_report& report) const {
  report.frames = written_;
  report.clips = tally_.clips;
  report.peak = tally_.peak * output_.gain();
}

}  // namespace corvin::studio

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// One path per channel, a pair of channels at a time by the word kernel. A channel that loses lock
// spends one word in the reference loop, which brings it back; the other one takes no notice.

#include "studio/kernels/word_loop.h"

#include <algorithm>
#include <cmath>

#include "studio/modulator/modulator_loop.h"
#include "studio/modulator/reference_loop.h"
#include "studio/modulator/word_tables.h"

namespace corvin::studio {
namespace {

constexpr double kState = 1 << kStateFraction;

std::int16_t rounded_base(double y) {
  // Loops that are back in lock have |y| far below the range of 256.
  return static_cast<std::int16_t>(static_cast<int>(std::floor(y * (1 << kBaseFraction))) | 1);
}

class PairLoop final : public ModulatorLoop {
 public:
  explicit PairLoop(const ModulatorConfig& config)
      : channels_(config.channels),
        shaper_(shaper_design(config.grade, config.oversampling)),
        interpolation_(config.wide_band),
        kernel_(&best_build<WordLoopVariant>(config.kernel_mask)) {
    make_word_tables(shaper_, interpolation_, tables_);
  }

  std::size_t unit() const override { return kWordSamples; }
  std::size_t ahead() const override {
    return static_cast<std::size_t>(interpolation_.taps()) / 2 + 2;
  }

  std::size_t run(const double* const* in, std::size_t units, std::uint8_t* const* out) override {
    std::size_t done = 0;
    while (done < units) {
      // A channel that is not there reads zeros and writes to the spare: a few words at a time.
      const std::size_t words = channels_ == 2 ? units - done : std::min(units - done, kSpare);
      const double* const from[2] = {
          in[0] + done * kWordSamples - interpolation_.history(),
          channels_ == 2 ? in[1] + done * kWordSamples - interpolation_.history() : zeros_};
      std::uint8_t* const to[2] = {out[0] + done * kWordSamples,
                                   channels_ == 2 ? out[1] + done * kWordSamples : spare_};
      if (!started_) {
        for (int c = 0; c < 2; ++c) make_bases(c, ReferenceLoop(shaper_), from[c]);
        started_ = true;
      }
      std::size_t count = kernel_->run(tables_, state_, from, words, true, to);
      if (count < words) {
        const double* const at[2] = {from[0] + count * kWordSamples,
                                     from[1] + count * kWordSamples};
        std::uint8_t* const place[2] = {to[0] + count * kWordSamples, to[1] + count * kWordSamples};
        recover(at, place);
        ++count;
      }
      done += count;
    }
    return units * kWordSamples;
  }

  void reset() override {
    state_ = {};
    started_ = false;
    std::fill_n(overloads_, 2, 0);
  }

  std::uint64_t overload_events(int channel) const override { return overloads_[channel]; }

 private:
  // What the kernel's states count in, over the weighted ones.
  double unit(int state) const { return state == 0 ? kState * tables_.charge_scale : kState; }

  // Values at the bits of a half whose first input is in[0].
  void interpolate(const double* in, double (&values)[8]) const {
    for (int phase = 0; phase < 8; ++phase) {
      values[phase] = 0;
      for (int j = 0; j < interpolation_.taps(); ++j) {
        values[phase] += interpolation_.tap(phase, j) * in[j];
      }
    }
  }

  // The state and bases at the begin of the word whose first input is in[0].
  void make_bases(int channel, ReferenceLoop loop, const double* in) {
    for (int i = 0; i < kMaxOrder; ++i) {
      const double value = loop.x[i] * shaper_.c[i] * unit(i);
      if (i < 2) state_.first[channel][i] = value;
      if (i >= 2) state_.rest[channel][i - 2] = static_cast<float>(value);
    }
    // The loop without bits.
    for (int half = 0; half < 2; ++half) {
      double values[8];
      interpolate(in + half, values);
      for (int i = 0; i < 8; ++i) {
        const std::int16_t base = rounded_base(loop.output(values[i]));
        (half == 0 ? state_.base_a : state_.base_c)[channel][i] = base;
        loop.advance(values[i]);
      }
    }
  }

  // One word at whose begin at least one channel has lost lock.
  void recover(const double* const* in, std::uint8_t* const* out) {
    const WordLoopState before = state_;
    kernel_->run(tables_, state_, in, 1, false, out);
    for (int c = 0; c < channels_; ++c) {
      if (in_lock(tables_, rounded_state(before, c))) continue;
      ++overloads_[c];
      ReferenceLoop loop(shaper_);
      loop.x[0] = before.first[c][0] / (shaper_.c[0] * unit(0));
      loop.catch_up();
      for (int half = 0; half < 2; ++half) {
        if (loop.lost_lock()) loop.catch_up();
        double values[8];
        interpolate(in[c] + half, values);
        unsigned bits = 0;
        for (double value : values) bits = bits << 1 | (loop.step(value) > 0 ? 1u : 0u);
        out[c][half] = static_cast<std::uint8_t>(bits);
      }
      make_bases(c, loop, in[c] + kWordSamples);
    }
  }

  static constexpr std::size_t kSpare = 64;  // words

  int channels_;
  const ShaperDesign& shaper_;
  Interpolation interpolation_;
  const WordLoopVariant* kernel_;
  bool started_ = false;
  WordLoopState state_;
  std::uint64_t overloads_[2] = {};
  WordLoopTables tables_ = {};
  double zeros_[kSpare * kWordSamples + kWordMaxTaps + 6] = {};
  std::uint8_t spare_[kSpare * kWordSamples] = {};
};

}  // namespace

std::unique_ptr<ModulatorLoop> make_pair_loop(const ModulatorConfig& config) {
  return std::make_unique<PairLoop>(config);
}

}  // namespace corvin::studio

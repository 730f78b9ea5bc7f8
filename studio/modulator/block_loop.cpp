// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// One path per channel: interpolation and loop sample by sample.

#include <algorithm>

#include "studio/modulator/modulator_loop.h"
#include "studio/modulator/reference_loop.h"

namespace corvin::studio {
namespace {

class BlockLoop final : public ModulatorLoop {
 public:
  explicit BlockLoop(const ModulatorConfig& config)
      : channels_(config.channels),
        interpolation_(config.wide_band),
        loops_{ReferenceLoop(noise_shaper(config.grade, config.oversampling)),
               ReferenceLoop(noise_shaper(config.grade, config.oversampling))} {}

  std::size_t unit() const override { return 2; }
  std::size_t ahead() const override { return static_cast<std::size_t>(interpolation_.taps()) / 2; }

  std::size_t run(const double* const* in, std::size_t units, std::uint8_t* const* out) override {
    for (int c = 0; c < channels_; ++c) {
      for (std::size_t k = 0; k < 2 * units; ++k) out[c][k] = byte(c, in[c] + k);
    }
    return 2 * units;
  }

  void reset() override {
    for (int c = 0; c < 2; ++c) {
      std::fill_n(loops_[c].x, kMaxOrder, 0.0);
      overloads_[c] = 0;
    }
  }

  std::uint64_t overload_events(int channel) const override { return overloads_[channel]; }

 private:
  std::uint8_t byte(int c, const double* in) {
    if (loops_[c].lost_lock()) {
      loops_[c].catch_up();
      ++overloads_[c];
    }
    unsigned bits = 0;
    for (int phase = 0; phase < Interpolation::kPhases; ++phase) {
      double u = 0;
      for (int j = 0; j < interpolation_.taps(); ++j) {
        u += interpolation_.tap(phase, j) * in[j - interpolation_.history()];
      }
      bits = bits << 1 | (loops_[c].step(u) > 0 ? 1u : 0u);
    }
    return static_cast<std::uint8_t>(bits);
  }

  int channels_;
  Interpolation interpolation_;
  ReferenceLoop loops_[2];
  std::uint64_t overloads_[2] = {};
};

}  // namespace

std::unique_ptr<ModulatorLoop> make_block_loop(const ModulatorConfig& config) {
  return std::make_unique<BlockLoop>(config);
}

}  // namespace corvin::studio

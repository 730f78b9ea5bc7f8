// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The grades that search: interpolation to the DSD rate, then lanes of paths. Four paths of two
// channels share the lanes; eight of one channel fill them.

#include <algorithm>

#include "studio/kernels/path_search.h"
#include "studio/modulator/modulator_loop.h"

namespace corvin::studio {
namespace {

constexpr std::size_t kSamplesPerWord = 4;
constexpr std::size_t kBitsPerSample = Interpolation::kPhases;
constexpr std::size_t kMaxWords = 32;  // at a time

PathSearchShape search_shape(const ShaperDesign& shaper, int paths) {
  PathSearchShape shape;
  shape.paths = static_cast<unsigned>(paths);
  for (int i = 0; i < kSearchOrder; ++i) {
    shape.weight[i] = static_cast<float>(i == 0 ? shaper.c[0] * kChargeUnit : shaper.c[i]);
    const double bound = shaper.bound[i] / (shaper.c[i] < 0 ? -shaper.c[i] : shaper.c[i]);
    shape.bound[i] = static_cast<float>(i == 0 ? bound / kChargeUnit : bound);
  }
  for (int k = 0; k < kSearchOrder / 2; ++k) {
    shape.feedback[k] = static_cast<float>(k == 0 ? shaper.g[0] / kChargeUnit : shaper.g[k]);
  }
  shape.first_two = static_cast<float>(shaper.c[0] + shaper.c[1]);
  return shape;
}

class SearchLoop final : public ModulatorLoop {
 public:
  SearchLoop(const ModulatorConfig& config, int paths)
      : channels_(config.channels),
        interpolation_(config.wide_band),
        shape_(search_shape(shaper_design(config.grade, config.oversampling), paths)),
        kernel_(&best_build<PathSearchVariant>(config.kernel_mask)) {
    for (int phase = 0; phase < Interpolation::kPhases; ++phase) {
      for (int j = 0; j < interpolation_.taps(); ++j) {
        taps_[j][phase] = interpolation_.tap(phase, j) / kChargeUnit;
      }
    }
  }

  std::size_t unit() const override { return kSamplesPerWord; }
  std::size_t ahead() const override {
    return static_cast<std::size_t>(interpolation_.taps()) / 2 + 1;
  }

  std::size_t run(const double* const* in, std::size_t units, std::uint8_t* const* out) override {
    const double* next[2] = {in[0], channels_ == 2 ? in[1] : nullptr};
    std::uint8_t* place[2] = {out[0], channels_ == 2 ? out[1] : spare_bytes_};
    std::size_t written = 0;
    while (units > 0) {
      // The first words of a stream push out what was never in: they go one by one to the spare.
      const bool early = words_ < kSearchWords - 1;
      const std::size_t words = early ? 1 : std::min(units, kMaxWords);
      for (int c = 0; c < channels_; ++c) interpolate(next[c], words, values_[c]);
      std::uint8_t* spare[2] = {spare_bytes_, spare_bytes_ + kSamplesPerWord};
      search(words, early ? spare : place);
      for (int c = 0; c < channels_; ++c) {
        next[c] += words * kSamplesPerWord;
        if (!early) place[c] += words * kSamplesPerWord;
      }
      if (!early) written += words * kSamplesPerWord;
      words_ += words;
      units -= words;
    }
    return written;
  }

  void reset() override {
    words_ = 0;
    for (PathSearchState& state : states_) state = {};
  }

  std::uint64_t overload_events(int channel) const override {
    return shape_.paths == kSearchLanes ? states_[channel].overloads[0]
                                        : states_[0].overloads[channel];
  }

 private:
  // Values at 8 x 4 x words + 1 bits; the last belongs to the next call.
  void interpolate(const double* in, std::size_t words, std::int32_t* values) const {
    const std::size_t samples = words * kSamplesPerWord;
    in -= interpolation_.history();
    for (std::size_t k = 0; k <= samples; ++k) {
      double sums[kBitsPerSample] = {};
      for (int j = 0; j < interpolation_.taps(); ++j) {
        const double sample = in[k + static_cast<std::size_t>(j)];
        for (std::size_t phase = 0; phase < kBitsPerSample; ++phase) {
          sums[phase] += taps_[j][phase] * sample;
        }
      }
      // Added and taken away again, it leaves the nearest integer.
      constexpr double kRounder = 0x1.8p52;
      for (std::size_t phase = 0; phase < (k < samples ? kBitsPerSample : 1); ++phase) {
        values[k * kBitsPerSample + phase] =
            static_cast<std::int32_t>((sums[phase] + kRounder) - kRounder);
      }
    }
  }

  void search(std::size_t words, std::uint8_t* const* out) {
    const bool apart = shape_.paths == kSearchLanes;
    const std::int32_t* const values[2] = {values_[0],
                                           apart && channels_ == 1 ? nullptr : values_[1]};
    if (words_ == 0) {
      for (int state = 0; state < (apart ? channels_ : 1); ++state) {
        states_[state] = path_search_start(shape_.paths, values + state);
      }
    }
    kernel_->run(shape_, states_, values, words, out);
  }

  int channels_;
  Interpolation interpolation_;
  PathSearchShape shape_;
  const PathSearchVariant* kernel_;
  double taps_[Interpolation::kMaxTaps][kBitsPerSample] = {};
  std::uint64_t words_ = 0;
  PathSearchState states_[2];
  std::int32_t values_[2][kMaxWords * kSamplesPerWord * kBitsPerSample + 1] = {};  // [1] may idle
  std::uint8_t spare_bytes_[kMaxWords * kSamplesPerWord] = {};
};

}  // namespace

std::unique_ptr<ModulatorLoop> make_search_loop(const ModulatorConfig& config, int paths) {
  return std::make_unique<SearchLoop>(config, paths);
}

}  // namespace corvin::studio

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Everything the way from PCM to the modulator knows before the first sample: stages, tables,
// responses and the grid of spans. Immutable after make_encode_plan(), so any number of threads
// may read it.
//
//   frames -> span transform (steep filter and a ratio near 4, or what is left of it)
//          -> short interpolation (x 2..16, where the modulator's rate is higher still)
//          -> samples for the modulator
//
// The modulator takes an eighth of the DSD rate and holds the last interpolation itself. Span b
// yields its inputs from b x hop_samples on; they lie such that the frame with index m is centred
// on the bit m x dsd_rate / pcm_rate of the stream.

#ifndef CORVIN_STUDIO_PLAN_ENCODE_PLAN_H_
#define CORVIN_STUDIO_PLAN_ENCODE_PLAN_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "studio/kernels/spectral.h"
#include "studio/plan/boxcars.h"
#include "studio/plan/steep_filter.h"

namespace corvin::studio {

struct EncodePlanConfig {
  std::uint32_t pcm_rate = 44100;
  std::uint32_t dsd_rate = 2822400;
  double pass_hz = 0;  ///< flat to here; 0 = 5 % of the highest stop_hz below stop_hz
  double stop_hz = 0;  ///< closed from here; 0 = half the lower of the PCM and the modulator's rate
  Phase phase = Phase::kLinear;
  bool low_latency = false;  ///< short spans: another grid, several times the transforms' work
  /// Amplitude of the modulator's own interpolation, which puts its input k on bit 8k, at a
  /// frequency given as a part of its input rate; none: 1.
  std::function<double(double)> response = {};
};

/// One-bit samples that `frames` make: pcm frames x dsd_rate / pcm_rate, rounded up.
std::uint64_t samples_of(std::uint64_t frames, std::uint32_t pcm_rate, std::uint32_t dsd_rate);

struct EncodePlan {
  EncodePlanConfig config;  ///< with the defaults filled in
  SpectralShape shape;
  std::size_t steep_taps;
  Boxcars boxcars;           ///< of the short interpolation; by 1: there is none
  std::vector<double> taps;  ///< [depth][factor], as its kernel takes them
  std::size_t depth;

  // The grid. All spans are alike: lead_frames before frame b x hop_frames span b starts to read,
  // shape.forward.points frames it reads.
  std::size_t lead_frames;
  std::size_t hop_frames;
  std::size_t hop_samples;

  std::size_t factor() const { return boxcars.decimation(); }
  std::size_t span_frames() const { return shape.forward.points; }

  /// One line for each stage, for people.
  std::string describe() const;
};

/// The plan, or nothing when a rate or an edge is not supported: 44.1k..768k of both families to
/// DSD64..512 of both; 0 < pass < stop <= half the lower of the PCM and the modulator's rate, with
/// a transition of 3 % of that half at least.
std::optional<EncodePlan> make_encode_plan(const EncodePlanConfig& config);

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_PLAN_ENCODE_PLAN_H_

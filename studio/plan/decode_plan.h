// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Everything a DSD to PCM conversion knows before the first sample: stages, tables, responses and
// the grid of spans. Immutable after make_decode_plan(), so any number of threads may read it.
//
//   bits -> integer filter (decimate by 2..32)
//        -> short filter (only above a total of 32)
//        -> span transform (steep filter and the remaining ratio 2:1, 147:80 or 320:147)
//
// Span b yields the outputs from b x hop_frames on; the output with index m lies exactly at the
// bit m x dsd_rate / pcm_rate of the stream.

#ifndef CORVIN_STUDIO_PLAN_DECODE_PLAN_H_
#define CORVIN_STUDIO_PLAN_DECODE_PLAN_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "studio/kernels/bit_fir.h"
#include "studio/kernels/spectral.h"
#include "studio/plan/boxcars.h"
#include "studio/plan/steep_filter.h"

namespace corvin::studio {

struct DecodePlanConfig {
  std::uint32_t dsd_rate = 2822400;
  std::uint32_t pcm_rate = 44100;
  double pass_hz = 0;  ///< flat to here; 0 = 5 % of half the PCM rate below stop_hz
  double stop_hz = 0;  ///< closed from here; 0 = half the PCM rate; both 0: decoder_band()
  Phase phase = Phase::kLinear;
  bool lsb_first = false;
  bool low_latency = false;     ///< short spans: another grid, twice the transforms' work
  unsigned row_stride_12 = 12;  ///< of the integer filter's table, see BitFirVariant
};

/// Frames that `samples` one-bit samples make: floor(samples x pcm_rate / dsd_rate).
std::uint64_t frames_of(std::uint64_t samples, std::uint32_t dsd_rate, std::uint32_t pcm_rate);

struct DecodePlan {
  DecodePlanConfig config;    ///< with the defaults filled in
  unsigned total_decimation;  ///< bits for each sample at the transform's input rate
  Boxcars bit_boxcars;        ///< the integer filter before rounding
  std::optional<Boxcars> fold_boxcars;

  std::vector<std::int32_t> bit_taps;
  BitFirTable bit_table;
  std::vector<double> fold_taps;  ///< empty without the short filter, symmetric otherwise
  std::size_t steep_taps;
  SpectralShape shape;

  // The grid. All spans are alike: lead_bytes before the bit of its first output a span starts to
  // read, span_bytes it reads, hop_bytes later the next one starts.
  std::size_t lead_bytes;
  std::size_t span_bytes;
  std::size_t hop_bytes;
  std::size_t hop_frames;
  std::size_t bit_steps;  ///< steps of the integer filter that a span keeps

  /// One line for each stage, for people.
  std::string describe() const;
};

/// The plan, or nothing when a rate, an edge or their combination is not supported: DSD64..512 of
/// both families to 44.1k..768k of both; 0 < pass < stop <= half the PCM rate, with a transition of
/// 3 % of half the PCM rate at least.
std::optional<DecodePlan> make_decode_plan(const DecodePlanConfig& config);

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_PLAN_DECODE_PLAN_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//

#include "studio/plan/decode_plan.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>

#include "studio/math/exact_math.h"
#include "studio/plan/pass_band.h"
#include "studio/plan/rate_family.h"
#include "studio/plan/short_transform.h"
#include "studio/plan/spectral_shape.h"

namespace corvin::studio {
namespace {

constexpr double kAttenuationDb = 160;
// For short spans, where the cut at the last bin would ring to -149.9 dB.
constexpr double kShortAttenuationDb = 162;
// Rows on either side of the steep kernel for the spread that the correction of the droop adds to
// it: without them the error at the spans' seams is -192 dB of full scale instead of -201.
constexpr double kSpread = 20;
// A minimum-phase kernel dies away behind the taps whose magnitude it has: on spans that end there
// it would leave -146 dB of what it stops. The longest spans have the room anyway.
constexpr double kMinimumLength = 1.2;
// With low latency a span adds three quarters of what it overlaps by: the two of an item wait for one
// and a half times what the filter spreads over, and cost about twice as much as the longest. Of a
// short filter, this many rows: with fewer the work would grow for the sake of a millisecond.
constexpr std::size_t kShortHop = 512;
// 50 % modulation is full scale.
constexpr double kFullScale = 2.0;

// The three shapes of the span transform. Sizes around 4096 are the fastest whose buffers still
// leave room in a second-level cache.
struct TransformShape {
  std::size_t forward, inverse;
  unsigned in, out;  // the ratio of the rates in lowest terms
};

TransformShape transform_shape(std::uint32_t dsd_base, std::uint32_t pcm_base) {
  if (dsd_base == pcm_base) return {4096, 2048, 2, 1};
  if (dsd_base == 44100) return {4704, 2560, 147, 80};
  return {5120, 2352, 320, 147};
}

struct Decimators {
  unsigned bit_decimation, bit_order, bit_lanes;
  unsigned fold_decimation, fold_order;  // 1, 0: none
};

// Orders that keep every alias below -150 dB. `wide`: 147:80, where the pass band is 8 % wider
// against the transform's input rate.
Decimators decimators(unsigned total, bool wide) {
  switch (total) {
    case 2:
      return {2, 13, 12, 1, 0};
    case 4:
      return {4, 12, 12, 1, 0};
    case 64:
      return {32, wide ? 8u : 7u, 8, 2, 12};
    case 128:
      return {32, 6, 8, 4, wide ? 12u : 11u};
    case 256:
      return {32, wide ? 6u : 5u, 8, 8, wide ? 12u : 11u};
    default:
      return {total, wide ? 12u : 11u, 12, 1, 0};
  }
}

// Integers as large as every partial sum allows: the short filter adds two before it converts.
std::vector<std::int32_t> integer_taps(const std::vector<double>& taps, bool folded) {
  double size = 0;
  for (double tap : taps) size += std::fabs(tap);
  const double largest = (folded ? 0x1p30 : 0x1p31) - 1 - static_cast<double>(taps.size());
  std::vector<std::int32_t> rounded;
  for (double tap : taps) {
    rounded.push_back(static_cast<std::int32_t>(std::floor(tap * (largest / size) + 0.5)));
  }
  return rounded;
}

BitFirTable make_bit_table(const std::vector<std::int32_t>& taps, unsigned decimation,
                           unsigned lanes, const DecodePlanConfig& config) {
  BitFirTable table;
  const unsigned step_bits = std::max(8u, decimation);
  table.bytes_per_step = step_bits / 8;
  table.outputs_per_step = step_bits / decimation;
  table.lanes = lanes;
  table.row_stride = lanes == 12 ? config.row_stride_12 : lanes;
  table.rows = AlignedArray<std::int32_t>(table.bytes_per_step * 256u * table.row_stride);
  for (unsigned byte = 0; byte < table.bytes_per_step; ++byte) {
    for (unsigned value = 0; value < 256; ++value) {
      std::int32_t* row = &table.rows[(byte * 256 + value) * table.row_stride];
      for (unsigned lane = 0; lane < lanes; ++lane) {
        for (unsigned bit = 0; bit < 8; ++bit) {
          // The newest bit that output 0 of a step reaches is the last one of its own decimation.
          const int tap =
              static_cast<int>((lane + 1) * decimation - 1) - static_cast<int>(byte * 8 + bit);
          if (tap < 0 || tap >= static_cast<int>(taps.size())) continue;
          const bool one = (value >> (config.lsb_first ? bit : 7 - bit) & 1) != 0;
          row[lane] +=
              one ? taps[static_cast<std::size_t>(tap)] : -taps[static_cast<std::size_t>(tap)];
        }
      }
    }
  }
  return table;
}

void fill_response(DecodePlan& plan, const std::vector<double>& steep_bins, double ramp_rows) {
  SpectralShape& shape = plan.shape;
  const std::size_t points = shape.forward.points;
  const std::size_t kept = shape.inverse.points;
  const double rate = static_cast<double>(plan.config.dsd_rate) / plan.total_decimation;
  const double gain = std::accumulate(plan.bit_taps.begin(), plan.bit_taps.end(), 0.0);
  const double scale = kFullScale / (static_cast<double>(points) * gain);
  // Boxcars with turned zeros do not have a gain of 1 at 0.
  double flat = plan.bit_boxcars.amplitude(0);
  for (std::size_t bin = 0; bin < kept / 2; ++bin) {
    const double hz = static_cast<double>(bin) * rate / static_cast<double>(points);
    double droop = plan.bit_boxcars.amplitude(hz / plan.config.dsd_rate) / flat;
    if (plan.fold_boxcars) {
      const double fold_rate = rate * plan.fold_boxcars->decimation();
      droop *= plan.fold_boxcars->amplitude(hz / fold_rate);
    }
    set_bin(shape, bin, steep_bins[2 * bin] * scale / droop,
            steep_bins[2 * bin + 1] * scale / droop, ramp_rows);
  }
}

}  // namespace

std::uint64_t frames_of(std::uint64_t samples, std::uint32_t dsd_rate, std::uint32_t pcm_rate) {
  const std::uint32_t common = std::gcd(dsd_rate, pcm_rate);
  const std::uint64_t in = dsd_rate / common;
  const std::uint64_t out = pcm_rate / common;
  return samples / in * out + samples % in * out / in;
}

std::optional<DecodePlan> make_decode_plan(const DecodePlanConfig& wanted) {
  DecodePlanConfig config = wanted;
  const auto dsd = dsd_family(config.dsd_rate);
  const auto pcm = pcm_family(config.pcm_rate);
  if (!dsd || !pcm) return std::nullopt;
  const double half = config.pcm_rate / 2.0;
  const auto band = choose_band({config.pass_hz, config.stop_hz}, half, decoder_band(*dsd, half));
  if (!band) return std::nullopt;
  config.pass_hz = band->pass_hz;
  config.stop_hz = band->stop_hz;

  // Both families' transforms run at the DSD family's own multiple of 88.2k or 96k.
  const unsigned total = 1u << (dsd->doublings - pcm->doublings - 1);
  const double rate = static_cast<double>(config.dsd_rate) / total;
  TransformShape sizes = transform_shape(dsd->base, pcm->base);
  const Decimators stages = decimators(total, sizes.in == 147);
  const std::vector<double> steep =
      kaiser_low_pass(rate, config.pass_hz, config.stop_hz,
                      config.low_latency ? kShortAttenuationDb : kAttenuationDb);

  const bool folds = stages.fold_decimation > 1;
  const double bit_rate = static_cast<double>(config.dsd_rate) / stages.bit_decimation;
  DecodePlan plan{.config = config,
                  .total_decimation = total,
                  .bit_boxcars = Boxcars(stages.bit_decimation, stages.bit_order, half / bit_rate),
                  .fold_boxcars = {},
                  .bit_taps = {},
                  .bit_table = {},
                  .fold_taps = {},
                  .steep_taps = 0,
                  .shape = {},
                  .lead_bytes = 0,
                  .span_bytes = 0,
                  .hop_bytes = 0,
                  .hop_frames = 0,
                  .bit_steps = 0};
  plan.bit_taps = integer_taps(plan.bit_boxcars.taps(), folds);
  plan.bit_table = make_bit_table(plan.bit_taps, stages.bit_decimation, stages.bit_lanes, config);
  if (folds) {
    plan.fold_boxcars = Boxcars(stages.fold_decimation, stages.fold_order, half / rate);
    plan.fold_taps = plan.fold_boxcars->taps();
  }

  plan.steep_taps = steep.size();
  const bool minimum = config.phase == Phase::kMinimum;
  const std::size_t grain = plan.bit_table.outputs_per_step;  // rows in a step, 1 unless few bits
  // Rows that an output needs before and after its own time.
  const double reach = static_cast<double>(steep.size() - 1);
  const double tail = config.low_latency ? kMinimumLength * reach : reach;
  const double past = (minimum ? tail : reach / 2) + kSpread;
  const double future = (minimum ? 0 : reach / 2) + kSpread;
  if (config.low_latency) {
    const auto overlap = static_cast<std::size_t>(std::ceil(past + future)) + grain + 1;
    const TransformSizes small =
        short_transform(sizes.in, sizes.out, overlap, grain, std::max(overlap * 3 / 4, kShortHop));
    sizes.forward = small.forward;
    sizes.inverse = small.inverse;
  }
  plan.shape = make_spectral_shape(sizes.forward, sizes.inverse);
  const std::vector<double> steep_bins = bin_response(steep, plan.shape.forward, config.phase);

  // A row's time is that of the centre of the bits that made it, this many after the row's own.
  const double fold_taps = folds ? static_cast<double>(plan.fold_taps.size()) : 1.0;
  const double row_delay = (stages.bit_decimation * (fold_taps - 1) / 2 + stages.bit_decimation -
                            1 - static_cast<double>(plan.bit_taps.size() - 1) / 2) /
                           total;
  auto lead_rows =
      (static_cast<std::size_t>(std::ceil(past + row_delay)) + grain - 1) / grain * grain;
  double first = static_cast<double>(lead_rows) - row_delay;
  const double ratio = static_cast<double>(sizes.in) / sizes.out;
  const auto last = static_cast<std::size_t>(
      std::floor(static_cast<double>(sizes.forward) - 1 - future - first + ratio));
  const std::size_t unit = std::lcm<std::size_t>(sizes.in, grain);
  const std::size_t hop_rows = last / unit * unit;
  if (config.low_latency) {
    // Rows too many for this hop and too few for the next one: nobody waits for those before.
    lead_rows += (last - hop_rows) / grain * grain;
    first = static_cast<double>(lead_rows) - row_delay;
  }
  plan.shape.first_row = static_cast<std::size_t>(std::floor(first / ratio));
  const double ramp_rows = first - static_cast<double>(plan.shape.first_row) * ratio;
  plan.shape.hop = hop_rows / sizes.in * sizes.out;
  plan.hop_frames = plan.shape.hop;
  plan.hop_bytes = hop_rows * total / 8;

  const std::size_t bit_rows =
      folds ? (sizes.forward - 1) * stages.fold_decimation + plan.fold_taps.size() : sizes.forward;
  plan.bit_steps = (bit_rows + grain - 1) / grain;
  const std::size_t warm = plan.bit_table.warm_steps();
  plan.lead_bytes = lead_rows * total / 8 + warm * plan.bit_table.bytes_per_step;
  plan.span_bytes = (warm + plan.bit_steps) * plan.bit_table.bytes_per_step;
  fill_response(plan, steep_bins, ramp_rows);
  return plan;
}

std::string DecodePlan::describe() const {
  char line[160];
  std::string text;
  std::snprintf(line, sizeof line, "bits: %u Hz, decimate by %u, order %u, %zu taps, %u lanes\n",
                config.dsd_rate, bit_boxcars.decimation(), bit_boxcars.order(), bit_taps.size(),
                bit_table.lanes);
  text += line;
  if (fold_boxcars) {
    std::snprintf(line, sizeof line, "fold: decimate by %u, order %u, %zu taps\n",
                  fold_boxcars->decimation(), fold_boxcars->order(), fold_taps.size());
    text += line;
  }
  std::snprintf(line, sizeof line,
                "transform: %zu to %zu points, %zu taps, flat to %.0f Hz, closed from %.0f Hz, "
                "%zu frames a block\n",
                shape.forward.points, shape.inverse.points, steep_taps, config.pass_hz,
                config.stop_hz, hop_frames);
  text += line;
  return text;
}

}  // namespace corvin::studio

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//

#include "studio/plan/encode_plan.h"

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

// What the corrections of the droop lift near the cut, by up to 6 dB, stays below -150 dB.
constexpr double kAttenuationDb = 162;
// For short spans, where the cut at the last bin rings more.
constexpr double kShortAttenuationDb = 170;
// Frames on either side of the steep kernel for the spread that the correction of the droop adds.
constexpr double kSpread = 20;
// Full scale is 50 % modulation.
constexpr double kFullScale = 0.5;
// Points of the input's transform for each tap of the steep filter, by which neighbouring spans
// overlap. Twice as many gain 5 % and double the latency; half as many cost 15 to 30 % more and let
// the cut at the last bin ring to -149.8 dB.
constexpr std::size_t kPointsPerTap = 4;
// With low latency a span adds this part of what it overlaps by. Its work is small beside the
// modulator's, which looks ahead as well: what is left of 20 ms at 44.1 kHz.
constexpr double kShortHop = 0.22;
// A minimum-phase kernel dies away behind the taps whose magnitude it has; longer spans have the room
// for that anyway.
constexpr double kMinimumLength = 1.75;

// The transform's ratio of rates in lowest terms, and its sizes.
struct TransformShape {
  std::size_t in, out, forward, inverse;
};

// Up by four, or by as much less as reaches the modulator's rate. The short interpolation needs the
// room that four leaves it between the sound and its images, and is cheaper than a transform: one
// up by eight, which would do for DSD64, costs a quarter more with AVX2.
TransformShape transform_shape(const RateFamily& pcm, const RateFamily& dsd,
                               std::size_t steep_taps) {
  constexpr int kModulatorDoublings = 3;
  constexpr int kMostDoublings = 2;
  const int wanted =
      static_cast<int>(dsd.doublings) - kModulatorDoublings - static_cast<int>(pcm.doublings);
  const int doublings = std::min(wanted, kMostDoublings);
  const std::size_t up = std::size_t{dsd.base} << std::max(doublings, 0);
  const std::size_t down = std::size_t{pcm.base} << std::max(-doublings, 0);
  const std::size_t common = std::gcd(up, down);
  TransformShape shape = {down / common, up / common, down / common, up / common};
  while (shape.forward < kPointsPerTap * steep_taps) {
    shape.forward *= 2;
    shape.inverse *= 2;
  }
  return shape;
}

// Order that keeps every image below -150 dB. `wide`: 48k to the 44.1k family, where the sound
// reaches 8 % further up in the transform's output rate.
unsigned interpolation_order(std::size_t factor, bool wide) {
  if (factor == 1) return 0;
  if (factor == 2) return wide ? 9 : 8;
  if (factor == 4) return 8;
  return wide ? 8 : 7;
}

// [depth][factor], with a gain of 1 for each phase.
std::vector<double> phase_taps(const Boxcars& boxcars, std::size_t depth) {
  const std::vector<double> whole = boxcars.taps();
  const std::size_t factor = boxcars.decimation();
  std::vector<double> taps(depth * factor);
  for (std::size_t t = 0; t < depth; ++t) {
    for (std::size_t d = 0; d < factor; ++d) {
      const std::size_t at = d + (depth - 1 - t) * factor;
      if (at < whole.size()) taps[t * factor + d] = static_cast<double>(factor) * whole[at];
    }
  }
  return taps;
}

std::vector<double> steep_filter(const EncodePlanConfig& config, double rate) {
  return kaiser_low_pass(rate, config.pass_hz, config.stop_hz,
                         config.low_latency ? kShortAttenuationDb : kAttenuationDb);
}

// The steep filter on the bins that both transforms share. A minimum phase belongs to a rate: that
// of the higher one, on whose circle the band has an end. On the frames' own, where it reaches up
// to half the rate, nothing would come before an event at the frames but much between them.
std::vector<double> steep_response(const EncodePlan& plan, const std::vector<double>& steep,
                                   double row_rate) {
  const EncodePlanConfig& config = plan.config;
  if (config.phase == Phase::kLinear || row_rate <= config.pcm_rate) {
    return bin_response(steep, plan.shape.forward, config.phase);
  }
  return bin_response(steep_filter(config, row_rate), plan.shape.inverse, config.phase);
}

void fill_response(EncodePlan& plan, const std::vector<double>& steep, double advance) {
  const double rate = plan.config.pcm_rate;
  const double points = static_cast<double>(plan.shape.forward.points);
  const double row_rate = rate * static_cast<double>(plan.shape.inverse.points) / points;
  const std::vector<double> bins = steep_response(plan, steep, row_rate);
  const std::size_t kept = std::min(plan.shape.forward.points, plan.shape.inverse.points);
  for (std::size_t bin = 0; bin < (kept + 1) / 2; ++bin) {
    const double hz = static_cast<double>(bin) * rate / points;
    double droop = plan.boxcars.amplitude(hz / (row_rate * static_cast<double>(plan.factor())));
    if (plan.config.response) droop *= plan.config.response(8 * hz / plan.config.dsd_rate);
    const double scale = kFullScale / (points * droop);
    set_bin(plan.shape, bin, bins[2 * bin] * scale, bins[2 * bin + 1] * scale, advance);
  }
}

}  // namespace

std::uint64_t samples_of(std::uint64_t frames, std::uint32_t pcm_rate, std::uint32_t dsd_rate) {
  const std::uint32_t common = std::gcd(pcm_rate, dsd_rate);
  const std::uint64_t in = pcm_rate / common;
  const std::uint64_t out = dsd_rate / common;
  return frames / in * out + (frames % in * out + in - 1) / in;
}

std::optional<EncodePlan> make_encode_plan(const EncodePlanConfig& wanted) {
  EncodePlanConfig config = wanted;
  const auto pcm = pcm_family(config.pcm_rate);
  const auto dsd = dsd_family(config.dsd_rate);
  if (!pcm || !dsd) return std::nullopt;

  const double modulator_rate = config.dsd_rate / 8.0;
  const double half = std::min<double>(config.pcm_rate, modulator_rate) / 2;
  const auto band = choose_band({config.pass_hz, config.stop_hz}, half, full_band(half));
  if (!band) return std::nullopt;
  config.pass_hz = band->pass_hz;
  config.stop_hz = band->stop_hz;
  const std::vector<double> steep = steep_filter(config, config.pcm_rate);
  TransformShape sizes = transform_shape(*pcm, *dsd, steep.size());
  const double frames_per_row = static_cast<double>(sizes.in) / static_cast<double>(sizes.out);
  const double row_rate = config.pcm_rate / frames_per_row;
  const auto factor = static_cast<unsigned>(std::lround(modulator_rate / row_rate));
  const bool wide = pcm->base > dsd->base;
  EncodePlan plan{
      .config = config,
      .shape = {},
      .steep_taps = steep.size(),
      .boxcars = Boxcars(factor, interpolation_order(factor, wide),
                         factor == 1 ? 0 : config.pcm_rate / 2.0 / row_rate),
      .taps = {},
      .depth = 1,
      .lead_frames = 0,
      .hop_frames = 0,
      .hop_samples = 0,
  };
  const double short_length = plan.boxcars.order() * (factor - 1.0) + 1;
  plan.depth = static_cast<std::size_t>(std::ceil(short_length / factor));
  plan.taps = phase_taps(plan.boxcars, plan.depth);

  // Sample 0 of a span belongs to time 0, and the row that it begins at to this earlier one, in
  // frames: the centre of the taps lies between them.
  const double centre = static_cast<double>(plan.depth - 1) - (short_length - 1) / 2 / factor;
  const double row_time = -centre * frames_per_row;
  const bool minimum = config.phase == Phase::kMinimum;
  const auto length = static_cast<double>(steep.size() - 1);
  const double tail = config.low_latency ? kMinimumLength * length : length;
  const double past = (minimum ? tail : length / 2) + kSpread;
  const double future = (minimum ? 0 : length / 2) + kSpread;
  if (config.low_latency) {
    const double rows = static_cast<double>(plan.depth) * frames_per_row;
    const auto overlap = static_cast<std::size_t>(std::ceil(past + future + rows)) + 2;
    const TransformSizes small =
        short_transform(sizes.in, sizes.out, overlap, 1,
                        static_cast<std::size_t>(kShortHop * static_cast<double>(overlap)));
    sizes.forward = small.forward;
    sizes.inverse = small.inverse;
  }
  plan.shape = make_spectral_shape(sizes.forward, sizes.inverse);
  plan.lead_frames = static_cast<std::size_t>(std::ceil(past - row_time));
  double first = static_cast<double>(plan.lead_frames) + row_time;
  const double last = static_cast<double>(sizes.forward) - 1 - future - first;
  const double rows = last / frames_per_row + 1 - static_cast<double>(plan.depth - 1);
  plan.shape.hop = static_cast<std::size_t>(rows) / sizes.out * sizes.out;
  if (config.low_latency) {
    // Frames too many for this hop and too few for the next one: nobody waits for those before.
    const double unused = (rows - static_cast<double>(plan.shape.hop)) * frames_per_row;
    plan.lead_frames += static_cast<std::size_t>(unused);
    first = static_cast<double>(plan.lead_frames) + row_time;
  }
  plan.shape.first_row = static_cast<std::size_t>(std::floor(first / frames_per_row));
  fill_response(plan, steep, first - static_cast<double>(plan.shape.first_row) * frames_per_row);
  plan.hop_frames = plan.shape.hop / sizes.out * sizes.in;
  plan.hop_samples = plan.shape.hop * factor;
  return plan;
}

std::string EncodePlan::describe() const {
  char line[160];
  std::snprintf(line, sizeof line,
                "transform: %u Hz, %zu to %zu points, %zu taps, flat to %.0f Hz, closed from %.0f "
                "Hz, %zu frames a block\n",
                config.pcm_rate, shape.forward.points, shape.inverse.points, steep_taps,
                config.pass_hz, config.stop_hz, hop_frames);
  std::string text = line;
  if (factor() > 1) {
    std::snprintf(line, sizeof line, "interpolation: by %zu, order %u, %zu taps a phase\n",
                  factor(), boxcars.order(), depth);
    text += line;
  }
  return text;
}

}  // namespace corvin::studio

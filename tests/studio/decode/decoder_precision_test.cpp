// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The whole chain against direct convolution, its bytes against a committed checksum, and the
// dither's statistics.

#include <gtest/gtest.h>

#include <cmath>
#include <complex>

#include "studio/kernels/kernels.h"
#include "studio/kernels/quantise.h"
#include "studio/pcm/dither_shaper.h"
#include "studio/pcm/sample_output.h"
#include "studio/plan/decode_plan.h"
#include "tests/support/filter_response.h"
#include "tests/support/kernel_builds.h"
#include "tests/support/studio_streams.h"

namespace corvin::studio {
namespace {

// One output sample summed from the definition: bits through the integer taps and the short filter
// to rows, rows through the continuous kernel that the bins describe, at the sample's own time.
double reference(const DecodePlan& plan, const Bytes& bits, std::size_t index) {
  using Index = std::ptrdiff_t;
  const auto bit = [&](Index at) {
    const bool outside = at < 0 || at >= static_cast<Index>(8 * bits.size());
    const std::uint8_t byte = outside ? kIdle : bits[static_cast<std::size_t>(at) / 8];
    return (byte >> (7 - (at & 7)) & 1) != 0 ? 1 : -1;
  };
  const auto by = static_cast<Index>(plan.bit_boxcars.decimation());
  const auto bit_row = [&](Index row) {
    double sum = 0;
    Index at = row * by + by - 1;
    for (std::int32_t tap : plan.bit_taps) sum += tap * bit(at--);
    return sum;
  };
  const bool folds = !plan.fold_taps.empty();
  const std::vector<double> fold = folds ? plan.fold_taps : std::vector<double>{1.0};
  const auto fold_by = folds ? static_cast<Index>(plan.fold_boxcars->decimation()) : 1;
  const auto value = [&](double row) {
    double sum = 0;
    Index at = static_cast<Index>(row) * fold_by;
    for (double tap : fold) sum += tap * bit_row(at++);
    return sum;
  };
  // The middle of the bits that make row 0.
  const double first = static_cast<double>(by) * static_cast<double>(fold.size() + 1) / 2 - 1 -
                       static_cast<double>(plan.bit_taps.size() - 1) / 2;
  const double time = static_cast<double>(index) * plan.config.dsd_rate / plan.config.pcm_rate;
  const double position = (time - first) / plan.total_decimation;
  const double reach = static_cast<double>(plan.steep_taps / 2 + 60);
  double sum = 0;
  for (double row = std::ceil(position - reach); row <= position + reach; ++row) {
    sum += value(row) * kernel_at(plan.shape, position - row);
  }
  return sum;
}

// Two sines near the ends of the pass band through a second-order modulator: unlike random bits,
// it leaves the noise below the steep edge where recordings have it, not 6 dB above full scale.
Bytes modulated_sines(std::size_t bytes, double dsd_rate, double high_hz) {
  Bytes result(bytes);
  double first = 0;
  double second = 0;
  for (std::size_t i = 0; i < 8 * bytes; ++i) {
    const double time = static_cast<double>(i) / dsd_rate;
    const double in =
        0.3 * std::sin(2 * M_PI * 997 * time) + 0.15 * std::sin(2 * M_PI * high_hz * time);
    const double out = second >= 0 ? 1 : -1;
    if (out > 0) result[i / 8] = static_cast<std::uint8_t>(result[i / 8] | 0x80 >> i % 8);
    first += in - out;
    second += first - out;
  }
  return result;
}

TEST(DecoderPrecision, BlocksAreADirectConvolution) {
  struct Case {
    std::uint32_t dsd, pcm;
  };
  for (const bool low : {false, true}) {
    for (const Case& pair : {Case{2822400, 44100}, Case{2822400, 48000}, Case{3072000, 44100},
                             Case{11289600, 44100}}) {
      DecodePlanConfig config;
      config.dsd_rate = pair.dsd;
      config.pcm_rate = pair.pcm;
      config.low_latency = low;
      const DecodePlan plan = *make_decode_plan(config);
      const std::size_t hop = plan.hop_frames;
      const Bytes bits = modulated_sines(3 * plan.hop_bytes, pair.dsd, 0.98 * plan.config.pass_hz);
      DecoderSettings settings;
      settings.dsd_rate = pair.dsd;
      settings.pcm_rate = pair.pcm;
      settings.channels = 1;
      settings.format = CORVIN_F64;
      settings.low_latency = low;
      const std::vector<double> out = channel_of(decode(settings, bits), 1, 0);
      double error = 0;
      // The first and last samples, and both sides of every seam of blocks.
      const std::size_t places[] = {0, 1, hop - 1, hop, 2 * hop - 1, 2 * hop, out.size() - 1};
      for (std::size_t place : places) {
        error += std::pow(out[place] - reference(plan, bits, place), 2);
      }
      EXPECT_LT(10 * std::log10(error / std::size(places)), -200) << pair.dsd << " to " << pair.pcm;
    }
  }
}

// What every compiler, processor and system must make of the same stream.
TEST(DecoderPrecision, BytesAreTheCommittedOnesFromEveryBuild) {
  struct Case {
    std::uint32_t dsd, pcm, format, dither, phase;
    double stop_hz;
    std::uint64_t checksum;
  };
  constexpr Case kCases[] = {
      {2822400, 44100, CORVIN_S24, CORVIN_DITHER_TPDF, CORVIN_LINEAR_PHASE, 0, 0xcbeb468644f4b7c4},
      {2822400, 48000, CORVIN_S16, CORVIN_DITHER_SHAPED, CORVIN_LINEAR_PHASE, 0,
       0x183744cdca1825d2},
      {2822400, 192000, CORVIN_S32, CORVIN_DITHER_TPDF, CORVIN_LINEAR_PHASE, 96000,
       0x6e2fb95580d4fb8f},
      {2822400, 352800, CORVIN_F32, CORVIN_DITHER_NONE, CORVIN_LINEAR_PHASE, 176400,
       0x869be82f3fe82ca0},
      {3072000, 176400, CORVIN_F64, CORVIN_DITHER_NONE, CORVIN_LINEAR_PHASE, 88200,
       0xd8ca118c9c72e699},
      {11289600, 96000, CORVIN_F64, CORVIN_DITHER_NONE, CORVIN_LINEAR_PHASE, 0, 0xb12e5af07c4b0b5b},
      {22579200, 88200, CORVIN_F64, CORVIN_DITHER_NONE, CORVIN_MINIMUM_PHASE, 0,
       0xe1b86451ed032d4a},
      {2822400, 352800, CORVIN_S24, CORVIN_DITHER_TPDF, CORVIN_LINEAR_PHASE, 0, 0x2af082ce94cbc024},
      {5644800, 768000, CORVIN_F64, CORVIN_DITHER_NONE, CORVIN_MINIMUM_PHASE, 0,
       0xb7e0d23d22264757},
  };
  for (const Case& test : kCases) {
    DecoderSettings settings;
    settings.dsd_rate = test.dsd;
    settings.pcm_rate = test.pcm;
    settings.format = test.format;
    settings.dither = test.dither;
    settings.phase = test.phase;
    settings.stop_hz = test.stop_hz;
    settings.seed = 0x123456789abcdef;
    const Bytes data = Random(13).bytes(300000);
    for (std::uint32_t mask : kernel_masks()) {
      settings.kernel_mask = mask;
      EXPECT_EQ(checksum(decode(settings, data)), test.checksum)
          << test.dsd << " to " << test.pcm << ", mask " << mask;
    }
  }
}

TEST(Dither, IsTriangularAndUncorrelated) {
  constexpr std::uint32_t kCount = 1u << 20;
  double mean = 0, power = 0, neighbours = 0, channels = 0;
  for (std::uint32_t i = 0; i < kCount; ++i) {
    const double value = triangular_dither(1, i);
    mean += value;
    power += value * value;
    neighbours += value * triangular_dither(1, i + 1);
    channels += value * triangular_dither(mix32(1), i);
  }
  // Four standard deviations of each mean.
  const double bound = 4 / std::sqrt(kCount);
  EXPECT_NEAR(mean / kCount, 0, bound * std::sqrt(1.0 / 6));
  EXPECT_NEAR(power / kCount, 1.0 / 6, bound / 5);
  EXPECT_NEAR(neighbours / power, 0, bound);
  EXPECT_NEAR(channels / power, 0, bound);
}

// Power of what is left of a stream of integers at 44.1 kHz from 2 to 5 kHz, in dB.
double sensitive_noise_db(const std::vector<double>& error) {
  constexpr std::size_t kSpan = 4096;
  double sum = 0;
  std::size_t spans = 0;
  for (std::size_t first = 0; first + kSpan <= error.size(); first += kSpan / 2, ++spans) {
    for (double hz = 2000; hz < 5000; hz += 100) {
      std::complex<double> bin = 0;
      const std::complex<double> step = std::polar(1.0, -2 * M_PI * hz / 44100);
      std::complex<double> turn = 1;
      for (std::size_t i = 0; i < kSpan; ++i, turn *= step) {
        const double window = 1 - std::cos(2 * M_PI * static_cast<double>(i) / kSpan);
        bin += window * error[first + i] * turn;
      }
      sum += std::norm(bin);
    }
  }
  return 10 * std::log10(sum / static_cast<double>(spans));
}

// Beginning anew leaves the last errors of a span without what would have hidden them: 0.35 dB.
TEST(Dither, ShapedNoiseStaysShapedWhereItBeginsAnew) {
  constexpr std::size_t kFrames = 1 << 19;
  constexpr double kLevel = 0.1234567;
  const std::vector<double> in(kFrames, kLevel);
  const DitherShaper shaper(44100);
  const QuantiseScale scale = {32768, -32768, 32767, true};
  std::vector<std::int32_t> steps(kFrames);
  QuantiseTally tally;
  DitherShaper::State state;
  shaper.run(in.data(), kFrames, scale, 1, 0, steps.data(), tally, state);
  std::vector<double> endless(kFrames);
  for (std::size_t i = 0; i < kFrames; ++i) endless[i] = steps[i] - kLevel * 32768;

  QuantizerSettings settings;
  settings.channels = 1;
  settings.format = CORVIN_S16;
  settings.dither = CORVIN_DITHER_SHAPED;
  SampleOutput output(settings, *choose_kernels(0).quantise);
  Bytes bytes(2 * kFrames);
  const double* const row = in.data();
  output.write(&row, 0, kFrames, bytes.data(), tally);
  std::vector<double> renewed(kFrames);
  for (std::size_t i = 0; i < kFrames; ++i) {
    renewed[i] = static_cast<std::int16_t>(bytes[2 * i] | bytes[2 * i + 1] << 8) - kLevel * 32768;
  }
  EXPECT_NEAR(sensitive_noise_db(renewed), sensitive_noise_db(endless), 0.5);
}

// Noise of the shaper in a band, in dB of one step's square.
double shaped_noise_db(double rate, double low_hz, double high_hz) {
  const DitherShaper shaper(rate);
  double sum = 0;
  constexpr int kPoints = 200;
  for (int i = 0; i < kPoints; ++i) {
    const double angle = 2 * M_PI * (low_hz + (high_hz - low_hz) * i / kPoints) / rate;
    std::complex<double> gain = 1;
    for (unsigned k = 0; k < DitherShaper::kTaps; ++k) {
      gain -= shaper.taps()[k] * std::polar(1.0, -angle * (k + 1));
    }
    sum += std::norm(gain);
  }
  return 10 * std::log10(sum / kPoints);
}

TEST(Dither, ShapedNoiseLeavesTheSensitiveBandAndTheSoundAlone) {
  for (double rate : {44100.0, 48000.0, 96000.0, 192000.0}) {
    EXPECT_LT(shaped_noise_db(rate, 2000, 5000), -12) << rate;
    EXPECT_LT(shaped_noise_db(rate, 0, rate / 2), 25) << rate;
  }
  // Through the loop itself: the mean error over many samples is nothing, even of a signal that
  // meets the limit now and then.
  const DitherShaper shaper(44100);
  const QuantiseScale scale = {32768, -32768, 32767, true};
  std::vector<double> in(100000, 0.123456789);
  in[500] = 1.5;
  std::vector<std::int32_t> out(in.size());
  QuantiseTally tally;
  DitherShaper::State state;
  shaper.run(in.data(), in.size(), scale, 1, 0, out.data(), tally, state);
  EXPECT_EQ(tally.clips, 1u);
  double sum = 0;
  for (std::size_t i = 1000; i < out.size(); ++i) sum += out[i] - in[i] * 32768;
  EXPECT_NEAR(sum / static_cast<double>(out.size() - 1000), 0, 0.01);
}

}  // namespace
}  // namespace corvin::studio

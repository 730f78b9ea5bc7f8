// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The whole chain against direct convolution, its bytes against a committed checksum, and the
// dither's statistics.

#include <gtest/gtest.h>

#include <cmath>

#include "studio/dither/noise_shaper.h"
#include "studio/kernels/quantise.h"
#include "studio/plan/decode_plan.h"
#include "tests/studio/streams.h"

namespace corvin::studio {
namespace {

// One output sample summed from the definition: bits through the integer taps and the short filter
// to rows, rows through the continuous kernel that the bins describe, at the sample's own time.
class Reference {
 public:
  Reference(const DecodePlan& plan, const Bytes& bits) : plan_(plan), bits_(bits) {}

  double sample(std::size_t index) const {
    const double total = plan_.total_decimation;
    const double fold = plan_.fold_taps.empty() ? 1 : static_cast<double>(plan_.fold_taps.size());
    const double decimation = plan_.bit_boxcars.decimation();
    // The middle of the bits that make row 0.
    const double first = decimation * (fold - 1) / 2 + decimation - 1 -
                         static_cast<double>(plan_.bit_taps.size() - 1) / 2;
    const double time = static_cast<double>(index) * plan_.config.dsd_rate / plan_.config.pcm_rate;
    const double position = (time - first) / total;
    const double reach = static_cast<double>(plan_.steep_taps / 2 + 60);
    double sum = 0;
    for (double row = std::ceil(position - reach); row <= position + reach; ++row) {
      sum += row_value(static_cast<std::ptrdiff_t>(row)) * kernel(position - row);
    }
    return sum;
  }

 private:
  double bit(std::ptrdiff_t at) const {
    const std::uint8_t byte = at < 0 || at >= static_cast<std::ptrdiff_t>(8 * bits_.size())
                                  ? 0x69
                                  : bits_[static_cast<std::size_t>(at) / 8];
    return (byte >> (7 - (at & 7)) & 1) != 0 ? 1 : -1;
  }

  double bit_row(std::ptrdiff_t row) const {
    const auto d = static_cast<std::ptrdiff_t>(plan_.bit_boxcars.decimation());
    double sum = 0;
    for (std::size_t t = 0; t < plan_.bit_taps.size(); ++t) {
      sum += plan_.bit_taps[t] * bit(row * d + d - 1 - static_cast<std::ptrdiff_t>(t));
    }
    return sum;
  }

  double row_value(std::ptrdiff_t row) const {
    if (plan_.fold_taps.empty()) return bit_row(row);
    const auto d = static_cast<std::ptrdiff_t>(plan_.fold_boxcars->decimation());
    double sum = 0;
    for (std::size_t t = 0; t < plan_.fold_taps.size(); ++t) {
      sum += plan_.fold_taps[t] * bit_row(row * d + static_cast<std::ptrdiff_t>(t));
    }
    return sum;
  }

  double kernel(double rows) const {
    const SpectralShape& shape = plan_.shape;
    double sum = 0;
    for (std::size_t bin = 0; bin < shape.inverse.points / 2; ++bin) {
      const std::size_t place = shape.inverse.position(bin);
      // Up to the stop edge a linear-phase response is positive: its size is all there is to it.
      const double size = std::hypot(shape.response[2 * place], shape.response[2 * place + 1]);
      const double angle =
          2 * M_PI * static_cast<double>(bin) * rows / static_cast<double>(shape.forward.points);
      sum += (bin == 0 ? 1 : 2) * size * std::cos(angle);
    }
    return sum;
  }

  const DecodePlan& plan_;
  const Bytes& bits_;
};

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
  for (const Case& pair :
       {Case{2822400, 44100}, Case{2822400, 48000}, Case{3072000, 44100}, Case{11289600, 44100}}) {
    DecodePlanConfig config;
    config.dsd_rate = pair.dsd;
    config.pcm_rate = pair.pcm;
    const DecodePlan plan = *make_decode_plan(config);
    const std::size_t hop = plan.hop_frames;
    const Bytes bits = modulated_sines(3 * plan.hop_bytes, pair.dsd, 0.98 * plan.config.pass_hz);
    DecoderSettings settings;
    settings.dsd_rate = pair.dsd;
    settings.pcm_rate = pair.pcm;
    settings.channels = 1;
    settings.format = CORVIN_F64;
    const auto out = channel_of(decode(settings, bits), 1, 0);
    const Reference reference(plan, bits);
    double error = 0;
    // The first and last samples, and both sides of every seam of blocks.
    const std::size_t places[] = {0, 1, hop - 1, hop, 2 * hop - 1, 2 * hop, out.size() - 1};
    for (std::size_t place : places) {
      error += std::pow(out[place] - reference.sample(place), 2);
    }
    EXPECT_LT(10 * std::log10(error / std::size(places)), -200) << pair.dsd << " to " << pair.pcm;
  }
}

// What every compiler, processor and system must make of the same stream.
TEST(DecoderPrecision, BytesAreTheCommittedOnes) {
  struct Case {
    std::uint32_t dsd, pcm, format, dither, phase;
    std::uint64_t checksum;
  };
  constexpr Case kCases[] = {
      {2822400, 44100, CORVIN_S24, CORVIN_DITHER_TPDF, CORVIN_LINEAR_PHASE, 0xcbeb468644f4b7c4},
      {2822400, 48000, CORVIN_S16, CORVIN_DITHER_SHAPED, CORVIN_LINEAR_PHASE, 0x776ab3a55adb4847},
      {3072000, 176400, CORVIN_F64, CORVIN_DITHER_NONE, CORVIN_LINEAR_PHASE, 0xd8ca118c9c72e699},
      {22579200, 88200, CORVIN_F64, CORVIN_DITHER_NONE, CORVIN_MINIMUM_PHASE, 0xe1b86451ed032d4a},
  };
  for (const Case& test : kCases) {
    DecoderSettings settings;
    settings.dsd_rate = test.dsd;
    settings.pcm_rate = test.pcm;
    settings.format = test.format;
    settings.dither = test.dither;
    settings.phase = test.phase;
    settings.seed = 0x123456789abcdef;
    Random random(13);
    std::uint64_t checksum = 0xcbf29ce484222325u;
    for (std::uint8_t byte : decode(settings, random.bytes(300000))) {
      checksum = (checksum ^ byte) * 0x100000001b3u;
    }
    EXPECT_EQ(checksum, test.checksum) << test.dsd << " to " << test.pcm << std::hex << checksum;
  }
}

TEST(Dither, IsTriangularAndUncorrelated) {
  constexpr std::uint32_t kCount = 1u << 20;
  double mean = 0;
  double power = 0;
  double neighbours = 0;
  double channels = 0;
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

// Noise of the shaper in a band, in dB of one step's square.
double shaped_noise_db(double rate, double low_hz, double high_hz) {
  const NoiseShaper shaper(rate);
  double sum = 0;
  constexpr int kPoints = 200;
  for (int i = 0; i < kPoints; ++i) {
    const double angle = 2 * M_PI * (low_hz + (high_hz - low_hz) * i / kPoints) / rate;
    double re = 1;
    double im = 0;
    for (unsigned k = 0; k < NoiseShaper::kTaps; ++k) {
      re -= shaper.taps()[k] * std::cos(angle * (k + 1));
      im += shaper.taps()[k] * std::sin(angle * (k + 1));
    }
    sum += re * re + im * im;
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
  const NoiseShaper shaper(44100);
  const QuantiseScale scale = {32768, -32768, 32767, true};
  std::vector<double> in(100000, 0.123456789);
  in[500] = 1.5;
  std::vector<std::int32_t> out(in.size());
  QuantiseTally tally;
  NoiseShaper::State state;
  shaper.run(in.data(), in.size(), scale, 1, 0, out.data(), tally, state);
  EXPECT_EQ(tally.clips, 1u);
  double sum = 0;
  for (std::size_t i = 1000; i < out.size(); ++i) sum += out[i] - in[i] * 32768;
  EXPECT_NEAR(sum / static_cast<double>(out.size() - 1000), 0, 0.01);
}

}  // namespace
}  // namespace corvin::studio

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// 24-bit PCM to DSD and back: what is left between the two is the modulator's noise and nothing
// else.

#include <gtest/gtest.h>

#include <complex>

#include "tests/support/bit_spectrum.h"
#include "tests/support/studio_streams.h"

namespace corvin::studio {
namespace {

constexpr std::size_t kFrames = 80000;
constexpr std::size_t kEdge = 4000;  // left out at both ends
constexpr std::size_t kWindow = 65536;

// Sines over the whole band, together -7 dBFS.
double sound_at(double seconds) {
  double value = 0;
  for (double hz : {83.0, 997.0, 3011.0, 7919.0, 13007.0, 19501.0}) {
    value += 0.074 * std::sin(2 * M_PI * hz * seconds + hz);
  }
  return value;
}

// What became of the sound: its level and delay by least squares, and the rest.
struct Change {
  double level_db, delay_frames;
  std::vector<double> residual;
};
Change change_of(const std::vector<double>& in, const std::vector<double>& out) {
  Change change;
  double power = 0, level = 0, slopes = 0, delay = 0;
  for (std::size_t i = kEdge; i < out.size() - kEdge; ++i) {
    change.residual.push_back(out[i] - in[i]);
    power += in[i] * in[i];
    level += change.residual.back() * in[i];
    // A shift by d frames leaves -d times the slope.
    const double slope = (in[i + 1] - in[i - 1]) / 2;
    slopes += slope * slope;
    delay -= change.residual.back() * slope;
  }
  change.level_db = 20 * std::log10(1 + level / power);
  change.delay_frames = delay / slopes;
  return change;
}

// Power from 20 Hz to 20 kHz, in dB re full modulation, of a signal at 44.1 kHz re full scale.
double band_db(const std::vector<double>& signal) {
  const std::vector<double> window = testing::kaiser(kWindow / 2, 20);
  std::vector<std::complex<double>> x(kWindow);
  double energy = 0;
  for (std::size_t i = 0; i < kWindow; ++i) {
    x[i] = signal[i] / 2 * window[i];
    energy += window[i] * window[i];
  }
  testing::transform(x);
  const double bin_hz = 44100.0 / kWindow;
  double power = 0;
  for (auto k = static_cast<std::size_t>(20 / bin_hz);
       k <= static_cast<std::size_t>(20000 / bin_hz); ++k) {
    power += 2 * std::norm(x[k]) / (kWindow * energy);
  }
  return 10 * std::log10(power);
}

TEST(RoundTrip, LeavesTheModulatorsNoiseAlone) {
  Bytes data;
  std::vector<double> in;
  for (std::size_t i = 0; i < kFrames; ++i) {
    const double value = sound_at(static_cast<double>(i) / 44100);
    const auto rounded = static_cast<std::int32_t>(std::lround(value * 8388608));
    in.push_back(rounded / 8388608.0);
    for (unsigned shift : {0u, 8u, 16u}) {
      data.push_back(static_cast<std::uint8_t>(static_cast<std::uint32_t>(rounded) >> shift));
    }
  }
  for (std::uint32_t grade :
       {CORVIN_MODULATOR_STANDARD, CORVIN_MODULATOR_HIGH, CORVIN_MODULATOR_BEST}) {
    EncoderSettings settings;
    settings.channels = 1;
    settings.modulator = grade;
    const std::vector<double> out = decode_mono(2822400, 44100, encode(settings, data));
    ASSERT_EQ(out.size(), kFrames);
    const Change change = change_of(in, out);
    // The loop passes the signal with a gain of 1 but for about 1e-6 dB.
    EXPECT_LT(std::fabs(change.level_db), 1e-5) << grade;
    EXPECT_LT(std::fabs(change.delay_frames), 1e-6) << grade;

    // The modulator's own noise, from the bits of a sine that no quantiser touched.
    settings.format = CORVIN_F64;
    const Bytes tone = encode(settings, as_f64(sine(997, 44100, 0.45, kFrames)));
    const double noise = testing::BitSpectrum(tone, 2822400, 20000, 32000).noise(997);
    const double residual = band_db(change.residual);
    EXPECT_LT(residual, noise + 1) << grade;
    std::printf("grade %u: residual %.2f dB, own noise %.2f dB, level %.1e dB, delay %.1e frames\n",
                grade, residual, noise, change.level_db, change.delay_frames);
  }
}

// In dBFS, away from the ends, where a modulator takes over from the silence around the stream.
double peak_of(const DecoderSettings& settings, const Bytes& bits) {
  const std::vector<double> out = channel_of(decode(settings, bits), 1, 0);
  double peak = 0;
  for (std::size_t i = out.size() / 10; i < out.size() * 9 / 10; ++i) {
    peak = std::max(peak, std::fabs(out[i]));
  }
  return 20 * std::log10(peak);
}

// Silence of DSD64 has peaks of -26 dBFS at 176.4k and of 0 dBFS at 705.6k, all of it the noise that
// the modulator moved out of the way: what is passed by default ends below that.
TEST(RoundTrip, SilenceIsSilentAtEveryPcmRate) {
  struct Case {
    std::uint32_t dsd_rate;
    double silence_db;
  };
  for (const auto& [dsd_rate, silence_db] :
       {Case{2822400, -105}, Case{3072000, -105}, Case{5644800, -105}}) {
    EncoderSettings encoder;
    encoder.channels = 1;
    encoder.format = CORVIN_F64;
    encoder.dsd_rate = dsd_rate;
    const Bytes silence = encode(encoder, as_f64(std::vector<double>(8000)));
    const Bytes tone = encode(encoder, as_f64(sine(1000, 44100, 0.5, 8000)));
    for (std::uint32_t pcm_rate :
         {44100u, 88200u, 96000u, 176400u, 192000u, 352800u, 384000u, 705600u, 768000u}) {
      DecoderSettings decoder;
      decoder.dsd_rate = dsd_rate;
      decoder.pcm_rate = pcm_rate;
      decoder.channels = 1;
      decoder.format = CORVIN_F64;
      EXPECT_LT(peak_of(decoder, silence), silence_db) << dsd_rate << " to " << pcm_rate;
      EXPECT_NEAR(peak_of(decoder, tone), -6.02, 0.05) << dsd_rate << " to " << pcm_rate;
      // The full band is one setting away.
      decoder.stop_hz = pcm_rate / 2.0;
      const double rise = dsd_rate == 5644800 ? 100000 : 80000;
      if (pcm_rate > 2 * rise) {
        EXPECT_GT(peak_of(decoder, silence), -32) << dsd_rate << " to " << pcm_rate;
      }
    }
  }
}

// Whatever the two rates, PCM frame m and the bit at its time mean the same moment. Every ratio of
// the transform, every factor of the interpolation.
TEST(RoundTrip, EveryPairOfRatesKeepsTimeAndLevel) {
  struct Pair {
    std::uint32_t pcm, dsd;
  };
  for (const auto& [pcm, dsd] :
       {Pair{48000, 2822400}, Pair{88200, 2822400}, Pair{96000, 6144000}, Pair{176400, 2822400},
        Pair{192000, 5644800}, Pair{352800, 2822400}, Pair{384000, 2822400}, Pair{705600, 2822400},
        Pair{705600, 3072000}, Pair{768000, 2822400}, Pair{44100, 5644800}, Pair{44100, 12288000},
        Pair{48000, 11289600}, Pair{44100, 22579200}}) {
    EncoderSettings settings;
    settings.channels = 1;
    settings.format = CORVIN_F64;
    settings.pcm_rate = pcm;
    settings.dsd_rate = dsd;
    std::vector<double> in(pcm * 4 / 10);
    for (std::size_t i = 0; i < in.size(); ++i) in[i] = sound_at(static_cast<double>(i) / pcm);
    const std::vector<double> out = decode_mono(dsd, 44100, encode(settings, as_f64(in)));
    ASSERT_EQ(out.size(), 44100u * 4 / 10);
    std::vector<double> expected(out.size());
    for (std::size_t i = 0; i < out.size(); ++i) {
      expected[i] = sound_at(static_cast<double>(i) / 44100);
    }
    const Change change = change_of(expected, out);
    EXPECT_LT(std::fabs(change.level_db), 1e-5) << pcm << " to " << dsd;
    EXPECT_LT(std::fabs(change.delay_frames), 1e-6) << pcm << " to " << dsd;
  }
}

}  // namespace
}  // namespace corvin::studio

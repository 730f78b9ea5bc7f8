// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What comes out of whole PCM to DSD jobs, heard through a long brick-wall filter.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

#include "classic/encode/pcm_to_dsd_job.h"
#include "tests/support/dsd_analysis.h"
#include "tests/support/encode_model.h"
#include "tests/support/temp_file.h"

namespace {

using corvin::testing::Bits;
using corvin::testing::EncodePair;
using corvin::testing::FitSine;
using corvin::testing::FullScaleDepth;
using corvin::testing::LowPass;
using corvin::testing::Sine;

std::vector<double> Tone(std::size_t frames, double frequency_hz, double rate_hz,
                         double amplitude) {
  std::vector<double> tone(frames);
  for (std::size_t i = 0; i < frames; ++i)
    tone[i] = amplitude *
              std::sin(2 * std::numbers::pi * frequency_hz * static_cast<double>(i) / rate_hz);
  return tone;
}

std::vector<char> PackPcm(const std::vector<std::vector<double>>& channels, int bits) {
  std::vector<char> bytes;
  const double full = std::ldexp(1.0, bits - 1) - 1;
  for (std::size_t i = 0; i < channels[0].size(); ++i)
    for (const auto& channel : channels) {
      const auto value = static_cast<std::int64_t>(std::llround(channel[i] * full));
      for (int b = bits / 8 - 1; b >= 0; --b) bytes.push_back(static_cast<char>(value >> 8 * b));
    }
  return bytes;
}

/// One vector of bits per channel.
std::vector<Bits> Encode(const EncodePair& pair, const std::vector<std::vector<double>>& channels,
                         int bits = 24, bool lsb_first = false) {
  std::vector<char> pcm = PackPcm(channels, bits);
  const std::size_t frames = channels[0].size();
  const corvin::testing::StreamPointer file(std::tmpfile());
  {
    CPCMtoDSD job(nullptr, nullptr, file.get(), static_cast<int>(channels.size()), pair.dsd_rate,
                  pair.pcm_rate, lsb_first, bits, true, frames, 1, 0, pcm.data(),
                  static_cast<int>(pcm.size()), nullptr);
    EXPECT_EQ(job.Translate2(), 0u);
  }
  const std::vector<std::uint8_t> bytes = corvin::testing::ReadBack(file.get());
  EXPECT_EQ(bytes.size(), (frames * static_cast<std::uint64_t>(pair.dsd_rate) /
                               static_cast<std::uint64_t>(pair.pcm_rate) +
                           7) /
                              8 * channels.size());
  std::vector<Bits> out(channels.size());
  for (std::size_t i = 0; i < bytes.size(); ++i)
    for (int bit = 0; bit < 8; ++bit)
      out[i % channels.size()].push_back((bytes[i] >> (lsb_first ? bit : 7 - bit) & 1) != 0 ? 1
                                                                                            : -1);
  return out;
}

double Db(double ratio) { return 20 * std::log10(ratio); }

class EncodeQuality : public testing::TestWithParam<EncodePair> {};

// Level, place and noise of sines, one per channel. The delay that the writer leaves is four PCM
// frames, rounded to bytes of DSD.
TEST_P(EncodeQuality, Sines) {
  const EncodePair& pair = GetParam();
  const std::size_t frames = static_cast<std::size_t>(pair.pcm_rate) * 3 / 20 + 7;
  for (const double level_db : {-6.0, -40.0}) {
    const double amplitude = std::pow(10, level_db / 20);
    const auto bits = Encode(pair, {Tone(frames, 1000, pair.pcm_rate, amplitude),
                                    Tone(frames, 7000, pair.pcm_rate, amplitude)});
    for (std::size_t c = 0; c < 2; ++c) {
      const double frequency = c == 0 ? 1000 : 7000;
      const Sine sine = FitSine(LowPass(bits[c], pair.dsd_rate), frequency);
      const double expected = amplitude * FullScaleDepth(pair, frequency);
      // 24-bit rounding of the input at -40 dB alone is 3e-6 of it.
      EXPECT_NEAR(sine.amplitude / expected, 1, 2e-5) << level_db << " dB at " << frequency;
      const double late = sine.delay_s - 4.0 / pair.pcm_rate;
      EXPECT_LT(std::abs(std::remainder(late, 1 / frequency)), 4.5 / pair.dsd_rate) << frequency;
      // What seventh-order shaping leaves below 20 kHz: DSD64 -110 dB, twice the rate 40 dB less.
      EXPECT_LT(Db(sine.residual), pair.dsd_rate < 5644800 ? -108 : -148) << frequency;
      EXPECT_LT(std::abs(sine.mean), 1e-8);
    }
  }
}

constexpr EncodePair kPairs[] = {
    {44100, 2822400, 512, 8, 1.4},      {96000, 3072000, 256, 8, 1.2},
    {176400, 2822400, 128, 8, 0.4},     {705600, 2822400, 64, 16, 0.2},
    {44100, 5644800, 1024, 8, 1.4},     {192000, 6144000, 256, 8, 1.2},
    {44100, 11289600, 2048, 8, 1.2},    {48000, 2822400, 294, 5, 1.4},
    {96000, 2822400, 147, 5, 0.4},      {768000, 2822400, 147, 40, 0.4},
    {96000, 5644800, 294, 5, 1.2},      {192000, 11289600, 294, 5, 1.2},
    {44100, 3072000, 10240, 147, 1.4},  {88200, 6144000, 10240, 147, 1.2},
    {44100, 12288000, 40960, 147, 1.2}, {705600, 12288000, 2560, 147, 1.2},
};

std::string PairName(const testing::TestParamInfo<EncodePair>& info) {
  return std::to_string(info.param.pcm_rate) + "To" + std::to_string(info.param.dsd_rate);
}

INSTANTIATE_TEST_SUITE_P(Pairs, EncodeQuality, testing::ValuesIn(kPairs), PairName);

TEST(Encode, BitOrderWidthAndChannelCountDoNotChangeTheSound) {
  const EncodePair pair = kPairs[7];
  const auto left = Tone(2000, 500, 48000, 0.5), right = Tone(2000, 3000, 48000, 0.25);
  const auto stereo = Encode(pair, {left, right});
  EXPECT_EQ(Encode(pair, {left, right}, 24, true), stereo);
  EXPECT_EQ(Encode(pair, {right})[0], stereo[1]);
  const auto many = Encode(pair, {left, right, left, right, left, right, left, right});
  for (std::size_t c = 0; c < many.size(); ++c) EXPECT_EQ(many[c], stereo[c % 2]);
  // 32 bits lose their lowest byte, wider words of the same value are the same sound.
  std::vector<double> coarse(2000);
  for (std::size_t i = 0; i < coarse.size(); ++i) coarse[i] = std::round(left[i] * 100) / 128;
  const auto widened = [&](int bits) {
    std::vector<double> exact(coarse);
    for (double& x : exact) x *= std::ldexp(1.0, bits - 1) / (std::ldexp(1.0, bits - 1) - 1);
    return Encode(pair, {exact}, bits);
  };
  for (int bits : {16, 24, 32}) EXPECT_EQ(widened(bits), widened(8)) << bits;
}

// Without a filter a sample is a bit: full scale is full modulation, but 8 bits reach half of it.
TEST(Encode, EqualRatesGoStraightToTheModulator) {
  const EncodePair pair{2822400, 2822400, 1, 1, 1.0};
  for (const int bits : {8, 16, 24, 32}) {
    const std::vector<double> constant(400000, 0.5);
    const Bits out = Encode(pair, {constant}, bits)[0];
    double mean = 0;
    for (const auto bit : out) mean += bit;
    const double expected = bits == 8 ? 64 / 255.0 : 0.5;
    EXPECT_NEAR(mean / static_cast<double>(out.size()), expected, bits == 8 ? 1e-4 : 3e-5) << bits;
  }
}

}  // namespace

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Encoding in small pieces: the times that the header states, the quality of the large ones, the
// same bytes from every build of the kernels, and work that is spread over the calls.

#include <gtest/gtest.h>

#include <map>

#include "studio/encode/encode_chain.h"
#include "tests/support/bit_spectrum.h"
#include "tests/support/kernel_builds.h"
#include "tests/support/studio_streams.h"
#include "tests/support/up_response.h"

namespace corvin::studio {
namespace {

// As stated for corvin_encoder_latency(), in milliseconds.
struct Stated {
  double linear, minimum;
};
const std::map<std::uint32_t, Stated> kStated = {
    {44100, {18.6, 15.3}}, {48000, {15.9, 14.0}}, {88200, {12.5, 11.1}}, {96000, {11.1, 10.4}},
    {176400, {9.5, 9.0}},  {192000, {9.0, 8.3}},  {352800, {8.2, 7.9}},  {384000, {9.2, 8.6}},
    {705600, {8.1, 7.7}},  {768000, {9.2, 8.5}},
};

EncodePlan plan_of(const EncodePlanConfig& config) {
  EncodePlanConfig low = config;
  low.low_latency = true;
  return make_encode_chain(low, ModulatorGrade::kStandard)->plan;
}

EncoderSettings settings_of(std::uint32_t grade, std::uint32_t channels) {
  EncoderSettings settings;
  settings.modulator = grade;
  settings.channels = channels;
  settings.format = CORVIN_F64;
  settings.low_latency = 1;
  return settings;
}

TEST(LowLatency, EveryPairKeepsItsPromises) {
  for (const auto& [pcm_rate, stated] : kStated) {
    for (const std::uint32_t dsd_rate : {2822400u, 3072000u, 5644800u, 12288000u, 22579200u}) {
      for (const Phase phase : {Phase::kLinear, Phase::kMinimum}) {
        const bool minimum = phase == Phase::kMinimum;
        EncoderSettings settings = settings_of(CORVIN_MODULATOR_STANDARD, 1);
        settings.pcm_rate = pcm_rate;
        settings.dsd_rate = dsd_rate;
        settings.phase = minimum ? CORVIN_MINIMUM_PHASE : CORVIN_LINEAR_PHASE;
        const Encoder encoder(settings);
        const double latency = 1e3 * static_cast<double>(encoder.latency()) / dsd_rate;
        EXPECT_LE(latency, minimum ? stated.minimum : stated.linear) << encoder.describe();

        const EncodePlan plan = plan_of({pcm_rate, dsd_rate, 0, 0, phase});
        const UpResponse::Figures figures = UpResponse(plan).figures();
        EXPECT_LE(figures.ripple_db, minimum ? 1e-5 : 1e-6) << plan.describe();
        EXPECT_LE(figures.image_db, -150) << plan.describe();
      }
    }
  }
}

// Edges that are asked for, the narrowest transition among them.
TEST(LowLatency, OwnEdgesKeepTheSameQuality) {
  for (const EncodePlanConfig& config :
       {EncodePlanConfig{48000, 2822400, 20000, 22000}, EncodePlanConfig{44100, 3072000, 18000, 0},
        EncodePlanConfig{176400, 2822400, 20000, 32000},
        EncodePlanConfig{96000, 22579200, 0.97 * 48000, 48000}}) {
    const EncodePlan plan = plan_of(config);
    const UpResponse::Figures figures = UpResponse(plan).figures();
    EXPECT_LE(figures.ripple_db, 1e-6) << plan.describe();
    EXPECT_LE(figures.image_db, -150) << plan.describe();
  }
}

// Few channels take narrower builds than many, of the same bits, and one that is modulated beside
// another has those of one alone.
TEST(LowLatency, EveryChannelIsTheSameAloneAndFromEveryBuild) {
  const std::vector<double> sound = sine(997, 44100, 0.5, 4000);
  Bytes alone;
  for (const std::uint32_t channels : {1u, 2u, 3u, 5u}) {
    EncoderSettings settings = settings_of(CORVIN_MODULATOR_STANDARD, channels);
    for (const std::uint32_t mask : kernel_masks()) {
      settings.kernel_mask = mask;
      const Bytes out = encode(settings, as_f64(sound, channels));
      Bytes last;
      for (std::size_t i = channels - 1; i < out.size(); i += channels) last.push_back(out[i]);
      if (alone.empty()) alone = last;
      EXPECT_TRUE(last == alone) << channels << " channels, mask " << mask;
    }
  }
}

// The noise is the modulator's, as with large pieces.
TEST(LowLatency, NoiseIsThatOfTheDefault) {
  const Bytes sound = as_f64(sine(997, 44100, 1.0, 35000));
  for (const std::uint32_t grade : {CORVIN_MODULATOR_STANDARD, CORVIN_MODULATOR_HIGH}) {
    double sndr[2] = {};
    for (const std::uint32_t low : {0u, 1u}) {
      EncoderSettings settings = settings_of(grade, 1);
      settings.low_latency = low;
      const testing::BitSpectrum spectrum(encode(settings, sound), 2822400, 20000, 3528);
      sndr[low] = spectrum.sndr(997);
      EXPECT_NEAR(spectrum.tone(997), 10 * std::log10(0.125), 1e-5) << grade;
    }
    EXPECT_GT(sndr[1], sndr[0] - 1) << grade;
  }
}

// Each call gives as many bytes as it pushes, but for what is too little to begin with: pieces are
// modulated while the next one comes in, not when they are complete.
TEST(LowLatency, WorkIsSpreadOverTheCalls) {
  for (const std::uint32_t channels : {1u, 3u}) {
    for (const std::size_t frames : {64u, 7u, 150u}) {
      Encoder encoder(settings_of(CORVIN_MODULATOR_STANDARD, channels));
      const Bytes sound(frames * channels * 8);
      Bytes out(std::size_t{1} << 20);
      std::size_t pushed = 0;
      while (pushed < 4410) {
        ASSERT_EQ(encoder.push(sound.data(), frames), frames);
        encoder.pull(std::span(out));
        pushed += frames;
      }
      for (; pushed < 20000; pushed += frames) {
        encoder.push(sound.data(), frames);
        const std::size_t bytes = encoder.pull(std::span(out)) / channels;
        EXPECT_NEAR(static_cast<double>(bytes), 8.0 * static_cast<double>(frames), 72) << pushed;
      }
    }
  }
}

}  // namespace
}  // namespace corvin::studio

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Decoding in small pieces: the times that the header states, the quality of the large ones, the
// same bytes from every build of the kernels.

#include <gtest/gtest.h>

#include <map>

#include "tests/support/kernel_builds.h"
#include "tests/support/plan_response.h"
#include "tests/support/studio_streams.h"

namespace corvin::studio {
namespace {

constexpr std::uint32_t kDsdRates[] = {2822400, 5644800, 11289600, 22579200,
                                       3072000, 6144000, 12288000, 24576000};

// As stated for corvin_decoder_latency(), in milliseconds.
struct Stated {
  double linear, minimum;
};
const std::map<std::uint32_t, Stated> kStated = {
    {44100, {19.6, 15.2}}, {48000, {18.2, 17.0}}, {88200, {9.8, 7.6}},  {96000, {9.1, 8.5}},
    {176400, {4.9, 3.8}},  {192000, {4.6, 4.3}},  {352800, {2.5, 1.9}}, {384000, {2.3, 2.2}},
    {705600, {1.8, 1.5}},  {768000, {1.7, 1.6}},
};

TEST(LowLatency, EveryPairKeepsItsPromises) {
  for (const auto& [pcm_rate, stated] : kStated) {
    for (const std::uint32_t dsd_rate : kDsdRates) {
      for (const Phase phase : {Phase::kLinear, Phase::kMinimum}) {
        for (const double stop_hz : {0.0, pcm_rate / 2.0}) {
          const bool minimum = phase == Phase::kMinimum;
          DecoderSettings settings;
          settings.dsd_rate = dsd_rate;
          settings.pcm_rate = pcm_rate;
          settings.stop_hz = stop_hz;
          settings.phase = minimum ? CORVIN_MINIMUM_PHASE : CORVIN_LINEAR_PHASE;
          settings.low_latency = 1;
          const Decoder decoder(settings);
          const double latency = 1e3 * static_cast<double>(decoder.latency()) / pcm_rate;
          EXPECT_LE(latency, minimum ? stated.minimum : stated.linear) << decoder.describe();

          // The other rates differ from these in the first stages alone.
          if (dsd_rate != 2822400 && dsd_rate != 11289600 && dsd_rate != 3072000) continue;
          const auto plan = make_decode_plan({.dsd_rate = dsd_rate,
                                              .pcm_rate = pcm_rate,
                                              .stop_hz = stop_hz,
                                              .phase = phase,
                                              .low_latency = true});
          const auto [ripple_db, stop_db, alias_db] = PlanResponse(*plan).figures();
          EXPECT_LE(ripple_db, minimum ? 1e-5 : 1e-6) << plan->describe();
          EXPECT_LE(stop_db, -150) << plan->describe();
          EXPECT_LE(alias_db, -150) << plan->describe();
        }
      }
    }
  }
}

// Any edges, the narrowest transition among them: a span is never shorter than what it overlaps by.
TEST(LowLatency, OwnEdgesKeepTheSameQuality) {
  for (const Phase phase : {Phase::kLinear, Phase::kMinimum}) {
    for (const auto& [dsd_rate, pcm_rate, pass_hz, stop_hz] :
         {std::tuple{2822400u, 44100u, 0.97 * 22050, 22050.0},
          std::tuple{3072000u, 44100u, 0.97 * 22050, 22050.0},
          std::tuple{2822400u, 48000u, 5000.0, 24000.0},
          std::tuple{2822400u, 352800u, 1000.0, 176400.0},
          std::tuple{2822400u, 768000u, 40000.0, 60000.0}}) {
      const auto plan = make_decode_plan({.dsd_rate = dsd_rate,
                                          .pcm_rate = pcm_rate,
                                          .pass_hz = pass_hz,
                                          .stop_hz = stop_hz,
                                          .phase = phase,
                                          .low_latency = true});
      ASSERT_TRUE(plan.has_value());
      const auto [ripple_db, stop_db, alias_db] = PlanResponse(*plan).figures();
      EXPECT_LE(ripple_db, 1e-5) << plan->describe();
      EXPECT_LE(stop_db, -150) << plan->describe();
      EXPECT_LE(alias_db, -150) << plan->describe();
    }
  }
}

// Few channels take narrower builds than many, of the same bits.
TEST(LowLatency, EveryChannelIsTheSameAloneAndFromEveryBuild) {
  constexpr std::size_t kBytes = 30001;
  for (const std::uint32_t dsd_rate : {2822400u, 11289600u}) {
    DecoderSettings settings;
    settings.dsd_rate = dsd_rate;
    settings.format = CORVIN_F64;
    settings.low_latency = 1;
    Bytes alone;
    for (const std::uint32_t channels : {1u, 2u, 3u, 5u, 9u}) {
      settings.channels = channels;
      std::vector<Bytes> sound;
      for (std::uint32_t c = 0; c < channels; ++c) sound.push_back(Random(50 + c).bytes(kBytes));
      for (const std::uint32_t mask : kernel_masks()) {
        settings.kernel_mask = mask;
        const Bytes out = decode(settings, layout(sound, 1));
        Bytes first;
        for (std::size_t i = 0; i < out.size(); i += 8 * channels) {
          first.insert(first.end(), &out[i], &out[i] + 8);
        }
        if (alone.empty()) alone = first;
        EXPECT_TRUE(first == alone) << dsd_rate << ", " << channels << " channels, mask " << mask;
      }
    }
  }
}

// What is ready grows by whole pieces, one at a time and all alike, each of less time than the
// latency: nothing makes a call do the work of several.
TEST(LowLatency, WorkComesInEqualPieces) {
  for (const std::uint32_t channels : {1u, 2u, 5u}) {
    DecoderSettings settings;
    settings.channels = channels;
    settings.low_latency = 1;
    Decoder decoder(settings);
    const Bytes data(8 * channels, kIdle);
    Bytes out(3 * channels * 4096);
    std::size_t piece = 0;
    for (int i = 0; i < 4410; ++i) {
      decoder.push(data);
      const std::size_t frames = decoder.pull(out.data(), 4096);
      if (frames == 0) continue;
      if (piece == 0) piece = frames;
      EXPECT_EQ(frames, piece) << i;
    }
    EXPECT_GT(piece, 0u);
    EXPECT_LT(piece, decoder.latency());
  }
}

}  // namespace
}  // namespace corvin::studio

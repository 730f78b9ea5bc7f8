// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What a user of the encoder relies on: length, layout, silence at the ends, and bytes that depend
// on nothing but the stream.

#include <gtest/gtest.h>

#include <limits>

#include "tests/support/kernel_builds.h"
#include "tests/support/studio_streams.h"

namespace corvin::studio {
namespace {

EncoderSettings mono(std::uint32_t pcm_rate, std::uint32_t dsd_rate) {
  EncoderSettings settings;
  settings.pcm_rate = pcm_rate;
  settings.dsd_rate = dsd_rate;
  settings.channels = 1;
  settings.format = CORVIN_F64;
  return settings;
}

TEST(Encoder, LengthIsExactForAnyCount) {
  struct Pair {
    std::uint32_t pcm, dsd;
  };
  for (const auto& [pcm, dsd] : {Pair{44100, 2822400}, Pair{48000, 2822400}, Pair{768000, 2822400},
                                 Pair{44100, 3072000}, Pair{96000, 5644800}}) {
    EncoderSettings settings = mono(pcm, dsd);
    settings.low_latency = 1;
    Encoder encoder(settings);
    DecoderSettings back;
    back.pcm_rate = pcm;
    back.dsd_rate = dsd;
    const Decoder decoder(back);
    for (std::size_t frames : {0u, 1u, 3u, 160u, 2501u, 7001u}) {
      const Bytes out = encode(encoder, settings, as_f64(std::vector<double>(frames, 0.1)));
      const std::uint64_t samples = (frames * std::uint64_t{dsd} + pcm - 1) / pcm;
      EXPECT_EQ(encoder.samples(frames), samples);
      EXPECT_EQ(encoder.report().samples, samples);
      ASSERT_EQ(out.size(), (samples + 7) / 8) << pcm << " to " << dsd << ' ' << frames;
      if (samples % 8 != 0) {
        EXPECT_EQ((out.back() ^ kIdle) & (0xff >> samples % 8), 0) << samples;
      }
      encoder.reset();
    }
    for (std::uint64_t frames : {0ull, 1ull, 159ull, 161ull, 44099ull, 1ull << 40}) {
      EXPECT_EQ(decoder.frames(encoder.samples(frames)), frames) << pcm;
    }
  }
}

// Planar in and out, in parts, as interleaved bytes.
Bytes encode_planar(const EncoderSettings& settings, const std::vector<Bytes>& sound,
                    Random& random) {
  Encoder encoder(settings);
  const std::size_t channels = sound.size();
  const std::size_t width = frame_bytes(settings) / channels;
  const auto push = [&](std::size_t at, std::size_t frames) {
    std::vector<const void*> in;
    for (const Bytes& channel : sound) in.push_back(&channel[at * width]);
    return encoder.push_planar(in, frames);
  };
  const auto pull = [&](std::uint8_t* to, std::size_t bytes) {
    std::vector<Bytes> planes(channels, Bytes(bytes));
    std::vector<std::uint8_t*> places;
    for (Bytes& plane : planes) places.push_back(plane.data());
    const std::size_t done = encoder.pull_planar(places, bytes);
    std::ranges::copy(layout(planes, 1), to);
    return done;
  };
  return run(encoder, sound[0].size() / width, push, channels, pull, &random);
}

TEST(Encoder, ChunksAndLayoutsDoNotChangeTheBytes) {
  Random random(30);
  constexpr std::size_t kFrames = 17001;
  for (std::uint32_t channels : {1u, 2u, 5u}) {
    EncoderSettings settings = mono(channels == 2 ? 48000 : 44100, 2822400);
    settings.channels = channels;
    settings.format = channels == 5 ? CORVIN_S16 : CORVIN_S24;
    const std::size_t width = frame_bytes(settings) / channels;
    std::vector<Bytes> sound;
    for (std::uint32_t c = 0; c < channels; ++c) sound.push_back(random.quiet_pcm(kFrames, width));
    std::vector<Bytes> planes[2];
    for (std::uint32_t low : {0u, 1u}) {
      settings.low_latency = low;
      const Bytes expected = encode_planar(settings, sound, random);
      ASSERT_EQ(expected.size(), (Encoder(settings).samples(kFrames) + 7) / 8 * channels);
      planes[low].resize(channels);
      for (std::size_t i = 0; i < expected.size(); ++i) {
        planes[low][i % channels].push_back(expected[i]);
      }
    }
    // Frames beyond the stated length are dropped.
    settings.length = kFrames;
    for (Bytes& channel : sound) channel.resize((kFrames + 1000) * width, 9);
    for (std::uint32_t block : {1u, 4096u, 1000000u}) {
      settings.block_bytes = block;
      settings.bit_order = block == 4096 ? CORVIN_LSB_FIRST : CORVIN_MSB_FIRST;
      settings.low_latency = block == 4096;
      Encoder encoder(settings);
      EXPECT_TRUE(encode(encoder, settings, layout(sound, width), &random) ==
                  layout(planes[settings.low_latency], block, settings.bit_order))
          << channels << " channels, block " << block;
    }
  }
}

TEST(Encoder, EveryFormatMeansTheSameSound) {
  Bytes sound[5];
  for (int i = 0; i < 5000; ++i) {
    const auto value =
        static_cast<std::int16_t>(i == 100 ? -32768 : std::lround(9000 * std::sin(i * 0.05)));
    const auto wide = static_cast<std::uint32_t>(value) << 16;
    for (std::size_t width : {2u, 3u, 4u}) {
      for (std::size_t place = 4 - width; place < 4; ++place) {
        sound[width - 2].push_back(static_cast<std::uint8_t>(wide >> 8 * place));
      }
    }
    const float single = static_cast<float>(value) / 32768;
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(&single);
    sound[CORVIN_F32].insert(sound[CORVIN_F32].end(), bytes, bytes + 4);
    std::ranges::copy(as_f64({single}), std::back_inserter(sound[CORVIN_F64]));
  }
  EncoderSettings settings = mono(44100, 2822400);
  const Bytes expected = encode(settings, sound[CORVIN_F64]);
  for (std::uint32_t format : {CORVIN_S16, CORVIN_S24, CORVIN_S32, CORVIN_F32, CORVIN_S20}) {
    settings.format = format;
    if (format == CORVIN_S20) format = CORVIN_S24;
    EXPECT_TRUE(encode(settings, sound[format]) == expected) << settings.format;
  }
}

// What every compiler, processor and system must make of the same stream.
TEST(Encoder, BytesAreTheCommittedOnesFromEveryBuild) {
  struct Case {
    std::uint32_t pcm, dsd, grade;
    std::uint64_t checksum;
  };
  constexpr Case kCases[] = {
      {44100, 2822400, CORVIN_MODULATOR_STANDARD, 0xa7e4752c634c8eac},
      {48000, 2822400, CORVIN_MODULATOR_HIGH, 0xd1da02a3e07cae2e},
      {44100, 3072000, CORVIN_MODULATOR_BEST, 0xbdacf29a3f042b78},
      {96000, 11289600, CORVIN_MODULATOR_STANDARD, 0xf048648449217ab9},
      {352800, 22579200, CORVIN_MODULATOR_STANDARD, 0xe4af4c597be93e71},
  };
  const Bytes sound = Random(31).quiet_pcm(2 * 4000, 2);
  for (const Case& test : kCases) {
    EncoderSettings settings;
    settings.pcm_rate = test.pcm;
    settings.dsd_rate = test.dsd;
    settings.modulator = test.grade;
    settings.format = CORVIN_S16;
    for (std::uint32_t mask : kernel_masks()) {
      settings.kernel_mask = mask;
      EXPECT_EQ(checksum(encode(settings, sound)), test.checksum)
          << test.pcm << " to " << test.dsd << ", mask " << mask;
    }
  }
}

TEST(Encoder, ResetEqualsNewAtAnyMoment) {
  Random random(32);
  EncoderSettings settings = mono(44100, 2822400);
  settings.block_bytes = 512;
  settings.low_latency = 1;
  const Bytes sound = as_f64(sine(3000, 44100, 1.2, 12000));
  const Bytes expected = encode(settings, sound);
  Encoder encoder(settings);
  for (std::size_t before : {1u, 5000u, 11000u}) {
    encoder.push(sound.data(), before);
    Bytes scrap(3000);
    encoder.pull(scrap);
    if (before == 11000) encoder.finish();
    encoder.reset();
    EXPECT_EQ(encoder.report().peak, 0);
    EXPECT_TRUE(encode(encoder, settings, sound, &random) == expected) << before;
    encoder.reset();
  }
}

TEST(Encoder, OutputNeverLagsMoreThanItsLatency) {
  for (std::uint32_t block : {1u, 4096u}) {
    EncoderSettings settings = mono(48000, 2822400);
    settings.low_latency = 1;
    settings.block_bytes = block;
    Encoder encoder(settings);
    std::uint64_t pushed = 0, pulled = 0, worst = 0;
    const Bytes silence(8 * 7);
    Bytes out(1 << 20);
    for (int i = 0; i < 3000; ++i) {
      ASSERT_EQ(encoder.push(silence.data(), 7), 7u);
      pushed += 7;
      pulled += encoder.pull(out);
      worst = std::max(worst, encoder.samples(pushed) - 8 * pulled);
    }
    EXPECT_LE(worst, encoder.latency());
    // A push of 7 frames, and what is too little to begin with.
    EXPECT_GE(worst + 8 * block + 59 * 7 + 8 * 72, encoder.latency());
  }
}

TEST(Encoder, GainPeakAndLimitingAreReported) {
  EncoderSettings settings = mono(44100, 2822400);
  const Bytes sound = as_f64(sine(997, 44100, 1.0, 20000));
  const auto report = [&](double gain_db) {
    settings.gain_db = gain_db;
    Encoder encoder(settings);
    encode(encoder, settings, sound);
    return encoder.report();
  };
  // The modulator's input holds the correction of its own droop, below 0.001 dB here.
  EXPECT_NEAR(report(-20).peak, 0.1, 2e-4);
  const corvin_encoder_report clean = report(3);
  EXPECT_NEAR(clean.peak, std::pow(10, 0.15), 2e-3);
  EXPECT_EQ(clean.limited, 0u);
  EXPECT_EQ(clean.overloads, 0u);
  EXPECT_GT(report(6).limited, 20000u);
}

// What is no number, and what no amplifier could play, in one channel: the other one does not
// notice, and the stream goes on.
TEST(Encoder, AbsurdSamplesHurtNoOneElse) {
  const std::vector<double> clean = sine(997, 44100, 0.9, 30000);
  EncoderSettings settings = mono(44100, 2822400);
  const Bytes alone = encode(settings, as_f64(clean));
  settings.channels = 2;
  Bytes sound = as_f64(clean, 2);
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const double absurd[] = {std::numeric_limits<double>::quiet_NaN(), kInfinity, -kInfinity, 1e300,
                           -1e300};
  for (std::size_t i = 0; i < 200; ++i) {
    std::memcpy(&sound[(4000 + i) * 16 + 8], &absurd[i % 5], 8);
  }
  Encoder encoder(settings);
  const Bytes out = encode(encoder, settings, sound);
  ASSERT_EQ(out.size(), 2 * alone.size());
  for (std::size_t i = 0; i < alone.size(); ++i) ASSERT_EQ(out[2 * i], alone[i]) << i;
  EXPECT_LT(encoder.report().peak, 32);

  DecoderSettings back;
  back.format = CORVIN_F64;
  const auto sick = channel_of(decode(back, out), 2, 1);
  // The band limit rings for 5 ms; then the sound is as clean as ever.
  for (std::size_t i = 4000 + 200 + 400; i < 29000; ++i) ASSERT_NEAR(sick[i], clean[i], 1e-4) << i;
}

TEST(Encoder, RefusesWhatItCannotDo) {
  const auto status = [](auto change) {
    EncoderSettings settings;
    change(settings);
    return status_of([&] { Encoder made(settings); });
  };
  using S = EncoderSettings;
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (std::uint32_t huge : {0u, 65u, 0xffffffffu}) {
    EXPECT_EQ(status([&](S& s) { s.channels = huge; }), CORVIN_E_ARGUMENT);
    EXPECT_EQ(status([&](S& s) { s.dsd_rate = huge; }), CORVIN_E_UNSUPPORTED);
    EXPECT_EQ(status([&](S& s) { s.pcm_rate = huge; }), CORVIN_E_UNSUPPORTED);
  }
  EXPECT_EQ(status([](S& s) { s.format = CORVIN_S20 + 1; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.modulator = 3; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.bit_order = 2; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.block_bytes = 0; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.threads = 65; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([&](S& s) { s.gain_db = nan; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.phase = 2; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([&](S& s) { s.pass_hz = nan; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.stop_hz = -1; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.pass_hz = 21900; }), CORVIN_E_UNSUPPORTED);
  EXPECT_EQ(status([](S& s) { s.stop_hz = 22051; }), CORVIN_E_UNSUPPORTED);
  // Half the modulator's rate bounds the band where that is the lower one.
  EXPECT_EQ(status([](S& s) { s.pcm_rate = 768000, s.stop_hz = 176401; }), CORVIN_E_UNSUPPORTED);
  EXPECT_EQ(status([](S& s) { s.size = sizeof s.size - 1; }), CORVIN_E_ARGUMENT);

  EncoderSettings settings;
  settings.block_bytes = 64;
  Encoder encoder(settings);
  std::size_t count = 0;
  EXPECT_EQ(corvin_encoder_push(encoder.handle(), nullptr, 1, &count), CORVIN_E_ARGUMENT);
  EXPECT_EQ(corvin_encoder_pull(nullptr, nullptr, 0, &count), CORVIN_E_ARGUMENT);
  const Bytes silence(6 * 100);
  encoder.push(silence.data(), 100);
  encoder.finish();
  EXPECT_EQ(corvin_encoder_push(encoder.handle(), silence.data(), 1, &count), CORVIN_E_STATE);
  Bytes out(64);
  EXPECT_EQ(encoder.pull(std::span(out).first(5)), 5u);
  std::uint8_t* const places[] = {out.data(), out.data()};
  EXPECT_EQ(corvin_encoder_pull_planar(encoder.handle(), places, 1, &count), CORVIN_E_STATE);
}

}  // namespace
}  // namespace corvin::studio

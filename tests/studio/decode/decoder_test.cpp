// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What a user of the decoder relies on: length, time, level, and bytes that depend on nothing but
// the stream.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/studio_streams.h"

namespace corvin::studio {
namespace {

DecoderSettings mono(std::uint32_t dsd_rate, std::uint32_t pcm_rate) {
  DecoderSettings settings;
  settings.dsd_rate = dsd_rate;
  settings.pcm_rate = pcm_rate;
  settings.channels = 1;
  settings.format = CORVIN_F64;
  return settings;
}

struct RatePair {
  std::uint32_t dsd, pcm;
};
// One pair for each shape of plan: every first stage, with and without the second, every transform.
constexpr RatePair kPairs[] = {{2822400, 44100},   {2822400, 192000}, {2822400, 352800},
                               {2822400, 768000},  {3072000, 44100},  {3072000, 88200},
                               {22579200, 176400}, {11289600, 48000}, {24576000, 44100}};

TEST(Decoder, LengthIsExactForAnyCount) {
  for (const auto& [dsd, pcm] : kPairs) {
    DecoderSettings settings = mono(dsd, pcm);
    Decoder decoder(settings);
    for (std::size_t bytes : {0u, 1u, 7u, 8u, 100u, 5003u, 70001u}) {
      EXPECT_EQ(decode(decoder, settings, Bytes(bytes, kIdle)).size() / 8,
                bytes * 8 * std::uint64_t{pcm} / dsd)
          << dsd << " to " << pcm << ", " << bytes;
      decoder.reset();
    }
    settings.length = 40003;
    EXPECT_EQ(decode(settings, Bytes(70001, kIdle)).size() / 8, 40003 * std::uint64_t{pcm} / dsd);
  }
}

TEST(Decoder, LevelAndTimeAreExact) {
  for (const RatePair& pair : kPairs) {
    const std::uint32_t dsd = pair.dsd;
    const std::uint32_t pcm = pair.pcm;
    SCOPED_TRACE(std::to_string(dsd) + " to " + std::to_string(pcm));
    const auto level = [dsd, pcm](std::uint8_t pattern) {
      const auto out = decode_mono(dsd, pcm, Bytes(dsd / 100, pattern));
      return out[out.size() / 2];
    };
    EXPECT_NEAR(level(0x77), 1.0, 1e-7);  // six of eight: 1e-6 dB
    EXPECT_NEAR(level(0x11), -1.0, 1e-7);
    EXPECT_NEAR(level(kIdle), 0.0, 1e-7);

    // One bit of silence flipped: the difference must be symmetric about that bit's time.
    const double ratio = static_cast<double>(dsd) / pcm;
    // Output 147 x 40 lies on a whole bit for every ratio.
    const std::size_t centre = 147 * 40;
    const auto bit = static_cast<std::size_t>(std::lround(static_cast<double>(centre) * ratio));
    Bytes data(bit / 4, kIdle);
    auto out = decode_mono(dsd, pcm, data);
    data[bit / 8] = static_cast<std::uint8_t>(data[bit / 8] ^ 0x80 >> bit % 8);
    const auto flipped = decode_mono(dsd, pcm, data);
    for (std::size_t i = 0; i < out.size(); ++i) out[i] -= flipped[i];
    for (std::size_t i = 1; i < 400; ++i) {
      // Images at -150 dB are not symmetric; a shift of 1e-6 frames would show.
      ASSERT_NEAR(out[centre - i], out[centre + i], 4 / ratio * 1e-7) << i;
    }
  }
}

TEST(Decoder, MinimumPhaseStartsAtTheEventWithTheSameLevel) {
  DecoderSettings settings = mono(2822400, 44100);
  settings.phase = CORVIN_MINIMUM_PHASE;
  Bytes data(64000, kIdle);
  const auto silent = channel_of(decode(settings, data), 1, 0);
  const std::size_t centre = 4000;
  data[centre * 8] = kIdle ^ 0x80;
  const auto out = channel_of(decode(settings, data), 1, 0);
  double before = 0, energy = 0, moment = 0;
  for (std::size_t i = 0; i < out.size(); ++i) {
    const double power = (out[i] - silent[i]) * (out[i] - silent[i]);
    if (i + 8 < centre) before += power;
    energy += power;
    moment += power * (static_cast<double>(i) - static_cast<double>(centre));
  }
  // The integer filter reaches 0.06 ms ahead of an event.
  EXPECT_LT(before / energy, 1e-14);
  EXPECT_LT(moment / energy, 0.3e-3 * 44100);
  EXPECT_GT(moment / energy, 0);
  EXPECT_NEAR(channel_of(decode(settings, Bytes(64000, 0x77)), 1, 0)[4000], 1.0, 1e-6);
}

// Planar in and out, in parts, as interleaved bytes.
Bytes decode_planar(const DecoderSettings& settings, const std::vector<Bytes>& sound,
                    Random& random) {
  Decoder decoder(settings);
  const std::size_t channels = sound.size();
  const std::size_t width = frame_bytes(settings) / channels;
  const auto push = [&](std::size_t at, std::size_t bytes) {
    std::vector<const std::uint8_t*> in;
    for (const Bytes& channel : sound) in.push_back(&channel[at]);
    return decoder.push_planar(in, bytes);
  };
  const auto pull = [&](std::uint8_t* to, std::size_t frames) {
    std::vector<Bytes> planes(channels, Bytes(frames * width));
    std::vector<void*> places;
    for (Bytes& plane : planes) places.push_back(plane.data());
    const std::size_t done = decoder.pull_planar(places, frames);
    const Bytes mixed = layout(planes, width);
    std::copy_n(mixed.begin(), done * channels * width, to);
    return done;
  };
  return run(decoder, sound[0].size(), push, frame_bytes(settings), pull, &random);
}

TEST(Decoder, ChunksAndLayoutsDoNotChangeTheBytes) {
  Random random(1);
  for (std::uint32_t channels : {1u, 2u, 5u}) {
    for (std::uint32_t format : {CORVIN_S16, CORVIN_S24, CORVIN_S32, CORVIN_F32, CORVIN_S20}) {
      DecoderSettings settings = mono(2822400, format == CORVIN_S32 ? 192000 : 88200);
      settings.channels = channels;
      settings.format = format;
      settings.dither = format == CORVIN_S16 ? CORVIN_DITHER_SHAPED : CORVIN_DITHER_TPDF;
      settings.seed = 7;
      std::vector<Bytes> sound;
      for (std::uint32_t c = 0; c < channels; ++c) sound.push_back(random.bytes(90001));
      settings.length = 90001 * 8 - 3;
      Bytes expected[2];
      for (std::uint32_t low : {0u, 1u}) {
        settings.low_latency = low;
        expected[low] = decode(settings, layout(sound, 1));
        ASSERT_FALSE(expected[low].empty());
        EXPECT_TRUE(decode_planar(settings, sound, random) == expected[low]) << channels << format;
      }

      for (std::uint32_t block : {1u, 4u, 4096u, 100000u}) {
        settings.block_bytes = block;
        settings.low_latency = block == 1 || block == 4096;
        for (std::uint32_t order : {CORVIN_MSB_FIRST, CORVIN_LSB_FIRST}) {
          settings.bit_order = order;
          Decoder decoder(settings);
          EXPECT_TRUE(decode(decoder, settings, layout(sound, block, order), &random) ==
                      expected[settings.low_latency])
              << channels << " channels, format " << format << ", block " << block;
        }
      }
    }
  }
}

TEST(Decoder, ResetEqualsNewAtAnyMoment) {
  Random random(3);
  DecoderSettings settings = mono(2822400, 44100);
  settings.format = CORVIN_S16;
  settings.dither = CORVIN_DITHER_SHAPED;
  settings.block_bytes = 512;
  const Bytes data = random.bytes(200000);
  const Bytes expected = decode(settings, data);
  Decoder decoder(settings);
  for (std::size_t before : {1u, 1000u, 60001u, 200000u}) {
    decoder.push(std::span(data).first(before));
    Bytes scrap(2 * 3000);
    decoder.pull(scrap.data(), 3000);
    if (before == 60001) decoder.finish();
    decoder.reset();
    EXPECT_EQ(decoder.report().peak, 0);
    EXPECT_TRUE(decode(decoder, settings, data, &random) == expected) << before;
    decoder.reset();
  }
}

TEST(Decoder, OutputNeverLagsMoreThanItsLatency) {
  for (std::uint32_t low : {0u, 1u}) {
    DecoderSettings settings = mono(2822400, 44100);
    settings.low_latency = low;
    Decoder decoder(settings);
    std::uint64_t pushed = 0, pulled = 0, worst = 0;
    const Bytes data(97, kIdle);
    Bytes out(8 * 40000);
    for (int i = 0; i < 3000; ++i) {
      ASSERT_EQ(decoder.push(data), data.size());
      pushed += data.size();
      pulled += decoder.pull(out.data(), 40000);
      worst = std::max(worst, decoder.frames(pushed * 8) - pulled);
    }
    EXPECT_LE(worst, decoder.latency());
    EXPECT_GE(worst + 20, decoder.latency());
  }
}

TEST(Decoder, RefusesWhatItCannotDo) {
  const auto status = [](auto change) {
    DecoderSettings settings;
    change(settings);
    return status_of([&] { Decoder made(settings); });
  };
  using S = DecoderSettings;
  const double nan = std::numeric_limits<double>::quiet_NaN();
  // A program built when the settings ended earlier: what it lacks takes its default.
  EXPECT_EQ(status([](S& s) {
              s.size = offsetof(corvin_decoder_settings, bit_order);
              s.format = 99;
            }),
            CORVIN_OK);
  for (std::uint32_t huge : {0u, 65u, 0xffffffffu}) {
    EXPECT_EQ(status([&](S& s) { s.channels = huge; }), CORVIN_E_ARGUMENT);
    EXPECT_EQ(status([&](S& s) { s.dsd_rate = huge; }), CORVIN_E_UNSUPPORTED);
    EXPECT_EQ(status([&](S& s) { s.pcm_rate = huge; }), CORVIN_E_UNSUPPORTED);
  }
  EXPECT_EQ(status([](S& s) { s.format = CORVIN_S20 + 1; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.block_bytes = 0; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.threads = 65; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([&](S& s) { s.gain_db = nan; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([&](S& s) { s.pass_hz = nan; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.stop_hz = 30000; }), CORVIN_E_UNSUPPORTED);
  EXPECT_EQ(status([](S& s) { s.pass_hz = 21900; }), CORVIN_E_UNSUPPORTED);
  EXPECT_EQ(status([](S& s) { s.stop_hz = 1e-3; }), CORVIN_E_UNSUPPORTED);
  // The whole of the edges that are asked for, none of the default's.
  EXPECT_EQ(status([](S& s) { s.pcm_rate = 352800, s.pass_hz = 100000; }), CORVIN_OK);
  EXPECT_EQ(status([](S& s) { s.pcm_rate = 352800, s.stop_hz = 20000; }), CORVIN_OK);
  EXPECT_EQ(status([](S& s) { s.size = sizeof s.size - 1; }), CORVIN_E_ARGUMENT);

  Decoder decoder;
  std::size_t count = 0;
  EXPECT_EQ(corvin_decoder_push(decoder.handle(), nullptr, 1, &count), CORVIN_E_ARGUMENT);
  EXPECT_EQ(corvin_decoder_pull(nullptr, nullptr, 0, &count), CORVIN_E_ARGUMENT);
  decoder.finish();
  EXPECT_EQ(corvin_decoder_push(decoder.handle(), "", 1, &count), CORVIN_E_STATE);
}

}  // namespace
}  // namespace corvin::studio

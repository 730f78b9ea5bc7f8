// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What a user of the decoder relies on: length, time, level, and bytes that depend on nothing but
// the stream.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/studio/streams.h"

namespace corvin::studio {
namespace {

constexpr std::uint8_t kIdle = 0x69;

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
  for (const RatePair& pair : kPairs) {
    const std::uint32_t dsd = pair.dsd;
    const std::uint32_t pcm = pair.pcm;
    DecoderSettings settings = mono(dsd, pcm);
    for (std::size_t bytes : {0u, 1u, 7u, 8u, 100u, 5003u, 70001u}) {
      const Bytes data(bytes, kIdle);
      EXPECT_EQ(decode(settings, data).size() / 8, bytes * 8 * std::uint64_t{pcm} / dsd)
          << dsd << " to " << pcm << ", " << bytes;
    }
    settings.length = 40003;
    EXPECT_EQ(decode(settings, Bytes(70001, kIdle)).size() / 8, 40003 * std::uint64_t{pcm} / dsd);
  }
}

TEST(Decoder, HalfModulationIsFullScaleAndSilenceIsSilent) {
  for (const RatePair& pair : kPairs) {
    const std::uint32_t dsd = pair.dsd;
    const std::uint32_t pcm = pair.pcm;
    const auto level = [&](std::uint8_t pattern) {
      const auto out = channel_of(decode(mono(dsd, pcm), Bytes(dsd / 100, pattern)), 1, 0);
      return out[out.size() / 2];
    };
    EXPECT_NEAR(level(0x77), 1.0, 1e-7) << dsd << " to " << pcm;  // six of eight: 1e-6 dB
    EXPECT_NEAR(level(0x11), -1.0, 1e-7) << dsd << " to " << pcm;
    // The idle pattern's own tone is at an eighth of the DSD rate.
    if (pcm < dsd / 4) {
      EXPECT_NEAR(level(kIdle), 0.0, 1e-7) << dsd << " to " << pcm;
    }
  }
}

// Flips one bit of silence: the difference must be symmetric about that bit's time.
TEST(Decoder, ImpulseLandsAtItsTime) {
  for (const RatePair& pair : kPairs) {
    const std::uint32_t dsd = pair.dsd;
    const std::uint32_t pcm = pair.pcm;
    const DecoderSettings settings = mono(dsd, pcm);
    const double ratio = static_cast<double>(dsd) / pcm;
    // Output 147 x 40 lies on a whole bit for every ratio.
    const std::size_t centre = 147 * 40;
    const auto bit = static_cast<std::size_t>(std::lround(static_cast<double>(centre) * ratio));
    Bytes data(bit / 4, kIdle);
    const auto silent = channel_of(decode(settings, data), 1, 0);
    data[bit / 8] = static_cast<std::uint8_t>(data[bit / 8] ^ 0x80 >> bit % 8);
    const bool one = (data[bit / 8] & 0x80 >> bit % 8) != 0;
    auto out = channel_of(decode(settings, data), 1, 0);
    double sum = 0;
    for (std::size_t i = 0; i < out.size(); ++i) {
      out[i] -= silent[i];
      sum += out[i];
    }
    for (std::size_t i = 1; i < 400; ++i) {
      // Images at -150 dB are not symmetric; a shift of 1e-6 frames would show.
      ASSERT_NEAR(out[centre - i], out[centre + i], 4 / ratio * 1e-7)
          << dsd << " to " << pcm << ", " << i;
    }
    EXPECT_NEAR(sum * ratio, one ? 4.0 : -4.0, 1e-6);  // a change of 2, doubled to full scale
  }
}

TEST(Decoder, MinimumPhaseStartsAtTheEventWithTheSameLevel) {
  DecoderSettings settings = mono(2822400, 44100);
  settings.phase = CORVIN_MINIMUM_PHASE;
  Bytes data(64000, kIdle);
  const auto silent = channel_of(decode(settings, data), 1, 0);
  const std::size_t centre = 4000;
  data[centre * 8] = kIdle ^ 0x80;
  auto out = channel_of(decode(settings, data), 1, 0);
  double before = 0;
  double energy = 0;
  double moment = 0;
  for (std::size_t i = 0; i < out.size(); ++i) {
    const double difference = out[i] - silent[i];
    if (i + 8 < centre) before += difference * difference;
    energy += difference * difference;
    moment += difference * difference * (static_cast<double>(i) - static_cast<double>(centre));
  }
  // The integer filter reaches 0.06 ms ahead of an event.
  EXPECT_LT(before / energy, 1e-14);
  EXPECT_LT(moment / energy, 0.3e-3 * 44100);
  EXPECT_GT(moment / energy, 0);
  EXPECT_NEAR(channel_of(decode(settings, Bytes(64000, 0x77)), 1, 0)[4000], 1.0, 1e-6);
}

Bytes layout(const std::vector<Bytes>& channels, std::size_t block) {
  Bytes result;
  for (std::size_t at = 0; at < channels[0].size(); at += block) {
    for (const Bytes& channel : channels) {
      for (std::size_t i = at; i < at + block; ++i) {
        result.push_back(i < channel.size() ? channel[i] : 0xff);
      }
    }
  }
  return result;
}

TEST(Decoder, ChunksAndLayoutsDoNotChangeTheBytes) {
  Random random(1);
  for (std::uint32_t channels : {1u, 2u, 5u}) {
    for (std::uint32_t format : {CORVIN_S16, CORVIN_S24, CORVIN_S32, CORVIN_F32}) {
      DecoderSettings settings = mono(2822400, format == CORVIN_S32 ? 192000 : 88200);
      settings.channels = channels;
      settings.format = format;
      settings.dither = format == CORVIN_S16 ? CORVIN_DITHER_SHAPED : CORVIN_DITHER_TPDF;
      settings.seed = 7;
      std::vector<Bytes> sound;
      for (std::uint32_t c = 0; c < channels; ++c) sound.push_back(random.bytes(90001));
      settings.length = 90001 * 8 - 3;
      const Bytes expected = decode(settings, layout(sound, 1));
      ASSERT_FALSE(expected.empty());

      for (std::uint32_t block : {1u, 4u, 4096u, 100000u}) {
        for (std::uint32_t latency : {0u, 1u}) {
          for (std::uint32_t order : {CORVIN_MSB_FIRST, CORVIN_LSB_FIRST}) {
            settings.block_bytes = block;
            settings.low_latency = latency;
            settings.bit_order = order;
            Bytes data = layout(sound, block);
            if (order == CORVIN_LSB_FIRST) {
              for (std::uint8_t& byte : data) byte = reversed(byte);
            }
            Decoder decoder(settings);
            const Bytes out = decode(
                decoder, settings, data, [&] { return random() % 30000; },
                [&] { return random() % 5000 + 1; });
            EXPECT_TRUE(out == expected) << channels << " channels, format " << format << ", block "
                                         << block << ", latency " << latency;
          }
        }
      }
    }
  }
}

TEST(Decoder, PlanarInAndOutAreTheInterleavedOnes) {
  Random random(2);
  DecoderSettings settings = mono(5644800, 96000);
  settings.channels = 3;
  settings.format = CORVIN_S24;
  const std::vector<Bytes> sound = {random.bytes(50000), random.bytes(50000), random.bytes(50000)};
  const Bytes expected = decode(settings, layout(sound, 1));
  Decoder decoder(settings);
  std::vector<Bytes> out(3, Bytes(expected.size() / 3 + 3));
  std::size_t pushed = 0;
  std::size_t pulled = 0;
  for (bool more = true; more;) {
    const std::uint8_t* in[] = {&sound[0][pushed], &sound[1][pushed], &sound[2][pushed]};
    pushed += decoder.push_planar(in, std::min<std::size_t>(49999 - pushed, 7777));
    if (pushed == 49999) {
      const std::uint8_t* last[] = {&sound[0][49999], &sound[1][49999], &sound[2][49999]};
      if (decoder.push_planar(last, 1) == 1) {
        decoder.finish();
        more = false;
      }
    }
    std::size_t done = 1;
    while (done > 0) {
      void* places[] = {&out[0][pulled * 3], &out[1][pulled * 3], &out[2][pulled * 3]};
      done = decoder.pull_planar(places, std::min<std::size_t>(1500, expected.size() / 9 - pulled));
      pulled += done;
    }
  }
  ASSERT_EQ(pulled, expected.size() / 9);
  for (std::size_t i = 0; i < expected.size(); ++i) {
    ASSERT_EQ(out[i / 3 % 3][i / 9 * 3 + i % 3], expected[i]) << i;
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
    decoder.reset();
    decoder.push(std::span(data).first(before));
    Bytes scrap(2 * 3000);
    decoder.pull(scrap.data(), 3000);
    if (before == 60001) decoder.finish();
    decoder.reset();
    EXPECT_TRUE(decode(
                    decoder, settings, data, [] { return 9999u; }, [] { return 999u; }) ==
                expected);
  }
}

TEST(Decoder, OutputNeverLagsMoreThanItsLatency) {
  for (std::uint32_t low : {0u, 1u}) {
    DecoderSettings settings = mono(2822400, 44100);
    settings.low_latency = low;
    settings.format = CORVIN_S16;
    Decoder decoder(settings);
    std::uint64_t pushed = 0;
    std::uint64_t pulled = 0;
    std::uint64_t worst = 0;
    for (int i = 0; i < 3000; ++i) {
      const Bytes data(97, kIdle);
      ASSERT_EQ(decoder.push(data), data.size());
      pushed += data.size();
      Bytes out(2 * 40000);
      pulled += decoder.pull(out.data(), 40000);
      worst = std::max(worst, decoder.frames(pushed * 8) - pulled);
    }
    EXPECT_LE(worst, decoder.latency());
    EXPECT_GE(worst + 20, decoder.latency());
  }
}

TEST(Decoder, GainPeakAndClipsAreReported) {
  DecoderSettings settings = mono(2822400, 44100);
  settings.format = CORVIN_S16;
  settings.gain_db = 6;
  settings.dither = CORVIN_DITHER_NONE;
  Decoder decoder(settings);
  const Bytes loud(80000, 0x77);
  const Bytes out = decode(
      decoder, settings, loud, [] { return 5000u; }, [] { return 5000u; });
  const corvin_decoder_report report = decoder.report();
  EXPECT_EQ(report.frames, 10000u);
  EXPECT_NEAR(static_cast<double>(report.clips), 10000, 20);  // all but the ramps of the ends
  EXPECT_GT(report.peak, std::pow(10, 0.3));
  EXPECT_EQ(out[10000], 0xff);
  EXPECT_EQ(out[10001], 0x7f);
  decoder.reset();
  EXPECT_EQ(decoder.report().clips, 0u);
}

TEST(Decoder, RefusesWhatItCannotDo) {
  const auto status = [](auto change) {
    DecoderSettings settings;
    change(settings);
    corvin_decoder* decoder = nullptr;
    const int result = corvin_decoder_create(&settings, &decoder);
    EXPECT_EQ(decoder != nullptr, result == CORVIN_OK);
    corvin_decoder_destroy(decoder);
    return result;
  };
  using S = DecoderSettings;
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(status([](S&) {}), CORVIN_OK);
  for (std::uint32_t huge : {0u, 65u, 0xffffffffu}) {
    EXPECT_EQ(status([&](S& s) { s.channels = huge; }), CORVIN_E_ARGUMENT);
    EXPECT_EQ(status([&](S& s) { s.dsd_rate = huge; }), CORVIN_E_UNSUPPORTED);
    EXPECT_EQ(status([&](S& s) { s.pcm_rate = huge; }), CORVIN_E_UNSUPPORTED);
  }
  EXPECT_EQ(status([](S& s) { s.format = 5; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.block_bytes = 0; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.threads = 65; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([&](S& s) { s.gain_db = nan; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([&](S& s) { s.pass_hz = nan; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.stop_hz = 30000; }), CORVIN_E_UNSUPPORTED);
  EXPECT_EQ(status([](S& s) { s.pass_hz = 21900; }), CORVIN_E_UNSUPPORTED);
  EXPECT_EQ(status([](S& s) { s.stop_hz = 1e-3; }), CORVIN_E_UNSUPPORTED);
  EXPECT_EQ(status([](S& s) { s.size = sizeof s.size - 1; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(corvin_decoder_create(nullptr, nullptr), CORVIN_E_ARGUMENT);

  Decoder decoder;
  std::size_t count = 0;
  EXPECT_EQ(corvin_decoder_push(decoder.handle(), nullptr, 1, &count), CORVIN_E_ARGUMENT);
  EXPECT_EQ(corvin_decoder_pull(nullptr, nullptr, 0, &count), CORVIN_E_ARGUMENT);
  decoder.finish();
  EXPECT_EQ(corvin_decoder_push(decoder.handle(), "", 1, &count), CORVIN_E_STATE);
}

// A program built when the settings ended earlier.
TEST(Decoder, OlderSettingsTakeDefaultsForWhatTheyLack) {
  DecoderSettings settings;
  settings.size = offsetof(corvin_decoder_settings, bit_order);
  settings.format = 99;
  corvin_decoder* decoder = nullptr;
  ASSERT_EQ(corvin_decoder_create(&settings, &decoder), CORVIN_OK);
  corvin_decoder_destroy(decoder);
}

}  // namespace
}  // namespace corvin::studio

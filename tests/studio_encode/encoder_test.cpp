// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What a user of the encoder relies on: length, layout, silence at the ends, and bytes that depend
// on nothing but the stream.

#include <gtest/gtest.h>

#include <limits>

#include "tests/studio_encode/streams.h"

namespace corvin::studio {
namespace {

constexpr std::uint8_t kIdle = 0x69;

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
  for (const Pair& pair : {Pair{44100, 2822400}, Pair{48000, 2822400}, Pair{768000, 2822400},
                           Pair{44100, 3072000}, Pair{96000, 5644800}}) {
    EncoderSettings settings = mono(pair.pcm, pair.dsd);
    settings.low_latency = 1;
    Encoder encoder(settings);
    for (std::size_t frames : {0u, 1u, 3u, 160u, 2501u, 7001u}) {
      const Bytes out = encode(
          encoder, settings, as_f64(std::vector<double>(frames, 0.1)), [] { return 1000u; },
          [] { return 5000u; });
      const std::uint64_t samples = (frames * std::uint64_t{pair.dsd} + pair.pcm - 1) / pair.pcm;
      EXPECT_EQ(encoder.samples(frames), samples);
      EXPECT_EQ(encoder.report().samples, samples);
      ASSERT_EQ(out.size(), (samples + 7) / 8) << pair.pcm << " to " << pair.dsd << ' ' << frames;
      if (samples % 8 != 0) {
        EXPECT_EQ((out.back() ^ kIdle) & (0xff >> samples % 8), 0) << samples;
      }
      encoder.reset();
    }
  }
}

TEST(Encoder, DecodedLengthIsTheFramesAgain) {
  for (std::uint32_t pcm_base : {44100u, 48000u}) {
    for (std::uint32_t dsd_base : {44100u, 48000u}) {
      for (std::uint32_t pcm = 1; pcm <= 16; pcm *= 2) {
        const Encoder encoder(mono(pcm_base * pcm, dsd_base * 64));
        DecoderSettings settings;
        settings.pcm_rate = pcm_base * pcm;
        settings.dsd_rate = dsd_base * 64;
        const Decoder decoder(settings);
        for (std::uint64_t frames : {0ull, 1ull, 2ull, 159ull, 161ull, 44099ull, 1ull << 40}) {
          EXPECT_EQ(decoder.frames(encoder.samples(frames)), frames) << pcm_base * pcm;
        }
      }
    }
  }
}

TEST(Encoder, FramesBeyondTheLengthAreDropped) {
  EncoderSettings settings = mono(44100, 2822400);
  const Bytes sound = as_f64(sine(997, 44100, 0.5, 3000));
  const Bytes part(sound.begin(), sound.begin() + 8 * 2000);
  const Bytes expected = encode(settings, part);
  settings.length = 2000;
  EXPECT_TRUE(encode(settings, sound) == expected);
}

// Planar bytes in the layout that `block` says, silence after the end.
Bytes layout(const std::vector<Bytes>& channels, std::size_t block, std::uint32_t order) {
  Bytes result;
  for (std::size_t at = 0; at < channels[0].size(); at += block) {
    for (const Bytes& channel : channels) {
      for (std::size_t i = at; i < at + block; ++i) {
        const std::uint8_t byte = i < channel.size() ? channel[i] : kIdle;
        result.push_back(order == CORVIN_LSB_FIRST ? reversed(byte) : byte);
      }
    }
  }
  return result;
}

std::vector<Bytes> encode_planar(const EncoderSettings& settings, const std::vector<Bytes>& in) {
  Encoder encoder(settings);
  const std::size_t width = frame_bytes(settings) / settings.channels;
  std::vector<Bytes> out(settings.channels);
  std::size_t pushed = 0;
  std::size_t pulled = 0;
  bool finished = false;
  for (;;) {
    std::vector<const void*> from;
    std::vector<std::uint8_t*> to;
    for (std::size_t c = 0; c < settings.channels; ++c) {
      from.push_back(in[c].data() + pushed * width);
      out[c].resize(pulled + 3001);
      to.push_back(&out[c][pulled]);
    }
    const std::size_t left = in[0].size() / width - pushed;
    if (left > 0) {
      pushed += encoder.push_planar(from, std::min<std::size_t>(left, 777));
    } else if (!finished) {
      encoder.finish();
      finished = true;
    }
    const std::size_t done = encoder.pull_planar(to, 3001);
    pulled += done;
    if (done == 0 && finished) break;
  }
  for (Bytes& channel : out) channel.resize(pulled);
  return out;
}

TEST(Encoder, ChunksAndLayoutsDoNotChangeTheBytes) {
  Random random(30);
  for (std::uint32_t channels : {1u, 2u, 5u}) {
    EncoderSettings settings = mono(channels == 2 ? 48000 : 44100, 2822400);
    settings.channels = channels;
    settings.format = channels == 5 ? CORVIN_S16 : CORVIN_S24;
    const std::size_t width = frame_bytes(settings) / channels;
    constexpr std::size_t kFrames = 17001;
    std::vector<Bytes> sound;
    for (std::uint32_t c = 0; c < channels; ++c) {
      sound.push_back(random.bytes(kFrames * width));
      // A tenth of full scale, so that no limiter hides a difference.
      for (std::size_t i = width - 1; i < sound[c].size(); i += width) {
        sound[c][i] = static_cast<std::uint8_t>(sound[c][i] % 24 - 12);
      }
    }
    Bytes interleaved;
    for (std::size_t i = 0; i < kFrames * width; i += width) {
      for (const Bytes& channel : sound) {
        interleaved.insert(interleaved.end(), &channel[i], &channel[i] + width);
      }
    }
    settings.low_latency = 1;
    const std::vector<Bytes> expected = encode_planar(settings, sound);
    ASSERT_EQ(expected[0].size(), (Encoder(settings).samples(kFrames) + 7) / 8);
    for (std::uint32_t block : {1u, 4096u, 1000000u}) {
      const std::uint32_t order = block == 4096 ? CORVIN_LSB_FIRST : CORVIN_MSB_FIRST;
      settings.block_bytes = block;
      settings.bit_order = order;
      settings.low_latency = block == 4096 ? 1 : 0;
      Encoder encoder(settings);
      const Bytes out = encode(
          encoder, settings, interleaved, [&] { return random() % 9000; },
          [&] { return random() % 30000 + 1; });
      EXPECT_TRUE(out == layout(expected, block, order))
          << channels << " channels, block " << block;
    }
  }
}

TEST(Encoder, EveryFormatMeansTheSameSound) {
  constexpr std::size_t kFrames = 5000;
  Bytes sound[5];
  for (std::size_t i = 0; i < kFrames; ++i) {
    const auto value = static_cast<std::int16_t>(
        i == 100 ? -32768 : std::lround(9000 * std::sin(static_cast<double>(i) * 0.05)));
    const auto wide = static_cast<std::uint32_t>(value) << 16;
    const float single = static_cast<float>(value) / 32768;
    const double full = single;
    const auto add = [](Bytes& out, const void* data, std::size_t size) {
      const auto* bytes = static_cast<const std::uint8_t*>(data);
      out.insert(out.end(), bytes, bytes + size);
    };
    for (unsigned shift : {16u, 24u}) sound[0].push_back(static_cast<std::uint8_t>(wide >> shift));
    for (unsigned shift : {8u, 16u, 24u}) {
      sound[1].push_back(static_cast<std::uint8_t>(wide >> shift));
    }
    for (unsigned shift : {0u, 8u, 16u, 24u}) {
      sound[2].push_back(static_cast<std::uint8_t>(wide >> shift));
    }
    add(sound[3], &single, 4);
    add(sound[4], &full, 8);
  }
  EncoderSettings settings = mono(44100, 2822400);
  const Bytes expected = encode(settings, sound[CORVIN_F64]);
  for (std::uint32_t format : {CORVIN_S16, CORVIN_S24, CORVIN_S32, CORVIN_F32}) {
    settings.format = format;
    EXPECT_TRUE(encode(settings, sound[format]) == expected) << format;
  }
}

TEST(Encoder, EveryBuildReturnsTheSameBytes) {
  for (std::uint32_t grade : {CORVIN_MODULATOR_STANDARD, CORVIN_MODULATOR_BEST}) {
    EncoderSettings settings = mono(44100, 2822400);
    settings.channels = 3;
    settings.modulator = grade;
    settings.kernel_mask = 0;
    const Bytes sound =
        as_f64(sine(997, 44100, 1.0, grade == CORVIN_MODULATOR_BEST ? 2000 : 6000), 3);
    const Bytes expected = encode(settings, sound);
    for (std::uint32_t mask : {1u, 3u, 7u}) {
      settings.kernel_mask = mask;
      EXPECT_TRUE(encode(settings, sound) == expected) << mask;
    }
  }
}

// What every compiler, processor and system must make of the same stream.
TEST(Encoder, BytesAreTheCommittedOnes) {
  struct Case {
    std::uint32_t pcm, dsd, grade;
    std::uint64_t checksum;
  };
  constexpr Case kCases[] = {
      {44100, 2822400, CORVIN_MODULATOR_STANDARD, 0xe549590d5c667ae7},
      {48000, 2822400, CORVIN_MODULATOR_HIGH, 0x20cf453f0e49b22b},
      {44100, 3072000, CORVIN_MODULATOR_BEST, 0x47d49885396a93cd},
      {96000, 11289600, CORVIN_MODULATOR_STANDARD, 0xaa11d62bb8fb0e67},
      {352800, 22579200, CORVIN_MODULATOR_STANDARD, 0xb29dab3f07f3f0b8},
  };
  Random random(31);
  Bytes sound(2 * 2 * 4000);
  for (std::size_t i = 0; i < sound.size(); ++i) {
    sound[i] = static_cast<std::uint8_t>(i % 2 == 0 ? random() : random() % 24 - 12);
  }
  for (const Case& test : kCases) {
    EncoderSettings settings;
    settings.pcm_rate = test.pcm;
    settings.dsd_rate = test.dsd;
    settings.modulator = test.grade;
    settings.format = CORVIN_S16;
    std::uint64_t checksum = 0xcbf29ce484222325u;
    for (std::uint8_t byte : encode(settings, sound)) {
      checksum = (checksum ^ byte) * 0x100000001b3u;
    }
    EXPECT_EQ(checksum, test.checksum)
        << test.pcm << " to " << test.dsd << std::hex << ' ' << checksum;
  }
}

TEST(Encoder, ResetEqualsNewAtAnyMoment) {
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
    EXPECT_TRUE(encode(
                    encoder, settings, sound, [] { return 999u; }, [] { return 9999u; }) ==
                expected);
    encoder.reset();
  }
}

TEST(Encoder, OutputNeverLagsMoreThanItsLatency) {
  for (std::uint32_t block : {1u, 4096u}) {
    EncoderSettings settings = mono(48000, 2822400);
    settings.low_latency = 1;
    settings.block_bytes = block;
    Encoder encoder(settings);
    std::uint64_t pushed = 0;
    std::uint64_t pulled = 0;
    std::uint64_t worst = 0;
    const Bytes silence(8 * 7);
    Bytes out(1 << 20);
    for (int i = 0; i < 3000; ++i) {
      ASSERT_EQ(encoder.push(silence.data(), 7), 7u);
      pushed += 7;
      pulled += encoder.pull(out);
      worst = std::max(worst, encoder.samples(pushed) - 8 * pulled);
    }
    EXPECT_LE(worst, encoder.latency());
    EXPECT_GE(worst + 8 * block + 59 * 7, encoder.latency());
  }
}

TEST(Encoder, LevelLimitAndPeakAreReported) {
  EncoderSettings settings = mono(44100, 2822400);
  const Bytes sound = as_f64(sine(997, 44100, 1.0, 20000));
  const auto report = [&](double gain_db) {
    settings.gain_db = gain_db;
    Encoder encoder(settings);
    encode(
        encoder, settings, sound, [] { return 5000u; }, [] { return 50000u; });
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
  std::vector<double> clean = sine(997, 44100, 0.9, 30000);
  EncoderSettings settings = mono(44100, 2822400);
  const Bytes alone = encode(settings, as_f64(clean));
  settings.channels = 2;
  Bytes sound = as_f64(clean, 2);
  const double absurd[] = {std::numeric_limits<double>::quiet_NaN(),
                           std::numeric_limits<double>::infinity(),
                           -std::numeric_limits<double>::infinity(), 1e300, -1e300};
  for (std::size_t i = 0; i < 200; ++i) {
    std::memcpy(&sound[(4000 + i) * 16 + 8], &absurd[i % 5], 8);
  }
  Encoder encoder(settings);
  const Bytes out = encode(
      encoder, settings, sound, [] { return 5000u; }, [] { return 50000u; });
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
    corvin_encoder* encoder = nullptr;
    const int result = corvin_encoder_create(&settings, &encoder);
    EXPECT_EQ(encoder != nullptr, result == CORVIN_OK);
    corvin_encoder_destroy(encoder);
    return result;
  };
  using S = EncoderSettings;
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(status([](S&) {}), CORVIN_OK);
  for (std::uint32_t huge : {0u, 65u, 0xffffffffu}) {
    EXPECT_EQ(status([&](S& s) { s.channels = huge; }), CORVIN_E_ARGUMENT);
    EXPECT_EQ(status([&](S& s) { s.dsd_rate = huge; }), CORVIN_E_UNSUPPORTED);
    EXPECT_EQ(status([&](S& s) { s.pcm_rate = huge; }), CORVIN_E_UNSUPPORTED);
  }
  EXPECT_EQ(status([](S& s) { s.format = 5; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.modulator = 3; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.bit_order = 2; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.block_bytes = 0; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.threads = 65; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([&](S& s) { s.gain_db = nan; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.size = 4; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(corvin_encoder_create(nullptr, nullptr), CORVIN_E_ARGUMENT);

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

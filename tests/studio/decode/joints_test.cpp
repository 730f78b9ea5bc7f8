// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Decoding from the middle of a stream and in stretches: bit for bit the part of the whole, wherever
// it is cut.

#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/studio_streams.h"

namespace corvin::studio {
namespace {

// Sound of which any stretch can be had, whole bytes or not.
class Whole {
 public:
  Whole(std::size_t channels, std::uint64_t samples, Random& random) : samples_(samples) {
    for (std::size_t c = 0; c < channels; ++c) {
      Bytes& channel = sound_.emplace_back(random.bytes(samples / 8 + 1));
      const unsigned behind = 0xffu >> samples % 8;
      channel.back() = static_cast<std::uint8_t>((channel.back() & ~behind) | (kIdle & behind));
    }
  }

  std::uint64_t samples() const { return samples_; }

  /// Bytes from a sample on, in a decoder's layout; ones before the first sample, silence behind the
  /// last.
  Bytes from(std::int64_t sample, std::size_t bytes, const DecoderSettings& settings) const {
    const unsigned within = static_cast<unsigned>(sample) % 8;
    std::int64_t place = (sample - within) / 8;
    std::vector<Bytes> parts(sound_.size());
    for (std::size_t i = 0; i < bytes; ++i, ++place) {
      for (std::size_t c = 0; c < parts.size(); ++c) {
        const unsigned two = unsigned{byte(sound_[c], place)} << 8 | byte(sound_[c], place + 1);
        parts[c].push_back(static_cast<std::uint8_t>(two >> (8 - within)));
      }
    }
    return layout(parts, settings.block_bytes, static_cast<std::uint32_t>(settings.bit_order));
  }

 private:
  static std::uint8_t byte(const Bytes& channel, std::int64_t place) {
    if (place < 0) return 0xff;
    const auto at = static_cast<std::size_t>(place);
    return at < channel.size() ? channel[at] : kIdle;
  }

  std::uint64_t samples_;
  std::vector<Bytes> sound_;
};

// What a decoder makes that starts at a sample, of the sound that it asks for.
Bytes decode_from(Decoder& decoder, const DecoderSettings& settings, const Whole& whole,
                  std::uint64_t sample, Random& random) {
  const std::uint64_t first = settings.first_sample;
  const std::uint64_t byte = (sample - first) / 8;
  const std::uint64_t reach = settings.context & CORVIN_CONTEXT_BEFORE ? (first + 7) / 8 : 0;
  const std::uint64_t before = std::min(decoder.preroll(), byte + reach);
  const std::uint64_t behind = settings.context & CORVIN_CONTEXT_BEHIND ? decoder.preroll() : 0;
  const std::uint64_t end =
      settings.length == 0 ? whole.samples() : std::min(whole.samples(), first + settings.length);
  const std::uint64_t bytes = before + (end - first + 7) / 8 - byte + behind;
  const Bytes data = whole.from(
      static_cast<std::int64_t>(first + 8 * byte) - static_cast<std::int64_t>(8 * before),
      static_cast<std::size_t>(bytes), settings);
  return decode(decoder, settings, data, &random);
}

struct Case {
  std::uint32_t dsd, pcm, channels, format, dither, phase, threads, low, order, block;
};
// Every transform and number of first stages, dithers with and without memory, layouts, threads.
constexpr Case kCases[] = {
    {2822400, 44100, 2, CORVIN_S24, CORVIN_DITHER_TPDF, 0, 0, 0, CORVIN_MSB_FIRST, 1},
    {2822400, 44100, 1, CORVIN_S16, CORVIN_DITHER_SHAPED, 0, 0, 1, CORVIN_LSB_FIRST, 1},
    {2822400, 48000, 2, CORVIN_S16, CORVIN_DITHER_SHAPED, 0, 2, 0, CORVIN_LSB_FIRST, 4096},
    {3072000, 44100, 1, CORVIN_F64, CORVIN_DITHER_NONE, 1, 2, 1, CORVIN_MSB_FIRST, 1},
    {2822400, 352800, 3, CORVIN_S16, CORVIN_DITHER_SHAPED, 0, 0, 1, CORVIN_MSB_FIRST, 7},
    {11289600, 44100, 1, CORVIN_F32, CORVIN_DITHER_TPDF, 1, 2, 0, CORVIN_LSB_FIRST, 1},
};

DecoderSettings settings_of(const Case& test) {
  DecoderSettings settings;
  settings.dsd_rate = test.dsd;
  settings.pcm_rate = test.pcm;
  settings.channels = test.channels;
  settings.format = test.format;
  settings.dither = test.dither;
  settings.phase = test.phase;
  settings.threads = test.threads;
  settings.low_latency = test.low;
  settings.bit_order = test.order;
  settings.block_bytes = test.block;
  settings.seed = 5;
  return settings;
}

std::string name_of(const Case& test) {
  return std::to_string(test.dsd) + " to " + std::to_string(test.pcm) + " block " +
         std::to_string(test.block);
}

TEST(Joints, SeekingGoesOnAsIfFromTheStart) {
  Random random(30);
  for (const Case& test : kCases) {
    SCOPED_TRACE(name_of(test));
    DecoderSettings settings = settings_of(test);
    // Longer than every pre-roll: that of shaped dither is the longest.
    const bool remembers = test.dither == CORVIN_DITHER_SHAPED;
    const std::uint64_t samples = test.dsd / 5 * (remembers ? 3 : 2) + 3;
    const Whole whole(test.channels, samples, random);
    // The stretch is the whole; then it begins within a byte of it, with silence before.
    for (const std::uint64_t first : {0u, 100003u}) {
      settings.first_sample = first;
      settings.length = samples - first;
      Decoder decoder(settings);
      const std::size_t width = frame_bytes(settings);
      const Bytes expected = decode_from(decoder, settings, whole, first, random);
      ASSERT_EQ(expected.size() / width, decoder.frames(samples) - decoder.frames(first));
      const std::uint64_t hop = 8 * decoder.preroll();
      for (const std::uint64_t sample :
           {first, first + 1, first + 777, first + hop - 1, first + hop + 9, samples / 2 + 5,
            samples - 12345, samples - 1, samples, first + random() % (samples - first)}) {
        decoder.seek(sample);
        const std::uint64_t skipped = decoder.frames(sample) - decoder.frames(first);
        const Bytes tail(expected.begin() + static_cast<std::ptrdiff_t>(skipped * width),
                         expected.end());
        EXPECT_TRUE(decode_from(decoder, settings, whole, sample, random) == tail) << sample;
        EXPECT_EQ(decoder.report().frames, tail.size() / width);
      }
      decoder.reset();
      EXPECT_TRUE(decode_from(decoder, settings, whole, first, random) == expected);
    }
  }
}

TEST(Joints, StretchesMakeTheWhole) {
  Random random(31);
  for (const Case& test : kCases) {
    SCOPED_TRACE(name_of(test));
    DecoderSettings settings = settings_of(test);
    const std::uint64_t samples = test.dsd / 5 * 4 + 5;
    const Whole whole(test.channels, samples, random);
    settings.length = samples;
    Decoder all(settings);
    const Bytes expected = decode_from(all, settings, whole, 0, random);
    // Within bytes, shorter than a frame and than the pre-roll, and near both ends.
    const std::uint64_t cuts[] = {0,
                                  random() % 100 + 1,
                                  40003,
                                  40010,
                                  samples / 2 + random() % 1000,
                                  samples / 2 + 60000,
                                  samples - 8001,
                                  samples};
    Bytes joined;
    for (std::size_t i = 0; i + 1 < std::size(cuts); ++i) {
      settings.first_sample = cuts[i];
      settings.length = cuts[i + 1] - cuts[i];
      settings.context = i + 2 < std::size(cuts) ? CORVIN_CONTEXT_BOTH : CORVIN_CONTEXT_BEFORE;
      Decoder decoder(settings);
      const Bytes part = decode_from(decoder, settings, whole, cuts[i], random);
      joined.insert(joined.end(), part.begin(), part.end());
      // Seeking within a stretch hears what is around it too.
      const std::uint64_t middle = cuts[i] + settings.length / 2;
      decoder.seek(middle);
      const std::size_t left =
          static_cast<std::size_t>(decoder.frames(cuts[i + 1]) - decoder.frames(middle)) *
          frame_bytes(settings);
      const Bytes tail = decode_from(decoder, settings, whole, middle, random);
      EXPECT_TRUE(tail == Bytes(part.end() - static_cast<std::ptrdiff_t>(left), part.end())) << i;
    }
    EXPECT_TRUE(joined == expected);
  }
}

TEST(Joints, PrerollIsTakenAtOnceAndPlacesBeyondAreRefused) {
  DecoderSettings settings = settings_of(kCases[1]);
  settings.first_sample = 1000;
  settings.length = 3000000;
  Decoder decoder(settings);
  decoder.seek(2000001);
  const Bytes data(decoder.preroll(), kIdle);
  EXPECT_EQ(decoder.push(data), data.size());
  EXPECT_EQ(status_of([&] { decoder.seek(999); }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status_of([&] { decoder.seek(3001001); }), CORVIN_E_ARGUMENT);
  Bytes out(10);
  EXPECT_EQ(decoder.pull(out.data(), 1), 0u) << "what was pushed lies before the place";
  settings.first_sample = ~std::uint64_t{0};
  EXPECT_EQ(status_of([&] { Decoder made(settings); }), CORVIN_E_ARGUMENT);
}

}  // namespace
}  // namespace corvin::studio

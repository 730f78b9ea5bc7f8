// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The quantizer makes of a decoder's numbers what the decoder makes itself; and what it must bear.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/studio_streams.h"

namespace corvin::studio {
namespace {

constexpr std::uint32_t kChannels = 3;

std::vector<double> numbers_of(const Bytes& f64) {
  std::vector<double> numbers(f64.size() / 8);
  std::memcpy(numbers.data(), f64.data(), f64.size());
  return numbers;
}

// The frames from `first` on in parts that `random` chooses, each way of passing them in turn.
Bytes quantize(Quantizer& quantizer, const QuantizerSettings& settings,
               const std::vector<double>& numbers, std::size_t first, Random& random) {
  const std::size_t width = frame_bytes(settings) / kChannels;
  Bytes out((numbers.size() / kChannels - first) * frame_bytes(settings));
  for (std::size_t at = first; at < numbers.size() / kChannels;) {
    const std::size_t count =
        std::min<std::size_t>(random() % 5000, numbers.size() / kChannels - at);
    std::uint8_t* to = out.data() + (at - first) * frame_bytes(settings);
    if (random() % 2 == 0) {
      quantizer.run(numbers.data() + at * kChannels, count, to);
    } else {
      std::vector<double> in[kChannels];
      Bytes apart[kChannels];
      const double* from[kChannels];
      void* places[kChannels];
      for (std::size_t c = 0; c < kChannels; ++c) {
        for (std::size_t i = 0; i < count; ++i) in[c].push_back(numbers[(at + i) * kChannels + c]);
        apart[c].resize(count * width);
        from[c] = in[c].data();
        places[c] = apart[c].data();
      }
      quantizer.run_planar(from, count, places);
      for (std::size_t i = 0; i < count * kChannels; ++i) {
        std::copy_n(apart[i % kChannels].begin() + static_cast<long>(i / kChannels * width), width,
                    to + i * width);
      }
    }
    at += count;
  }
  return out;
}

TEST(Quantizer, MakesTheDecodersBytes) {
  Random random(60);
  DecoderSettings decoder;
  decoder.channels = kChannels;
  decoder.seed = 0x123456789;
  const Bytes sound = random.bytes(kChannels * 8 * 40000);
  for (const double gain : {-1.7, 5.0}) {
    decoder.gain_db = gain;
    decoder.format = CORVIN_F64;
    const std::vector<double> numbers = numbers_of(decode(decoder, sound));
    for (const std::uint32_t format :
         {CORVIN_S16, CORVIN_S20, CORVIN_S24, CORVIN_S32, CORVIN_F32}) {
      for (const std::uint32_t dither :
           {CORVIN_DITHER_NONE, CORVIN_DITHER_TPDF, CORVIN_DITHER_SHAPED}) {
        SCOPED_TRACE(::testing::Message() << gain << " dB, format " << format << ", " << dither);
        decoder.format = format;
        decoder.dither = dither;
        Decoder reference(decoder);
        const Bytes expected = decode(reference, decoder, sound);
        QuantizerSettings settings;
        settings.channels = kChannels;
        settings.format = format;
        settings.dither = dither;
        settings.seed = decoder.seed;
        Quantizer quantizer(settings);
        EXPECT_TRUE(quantize(quantizer, settings, numbers, 0, random) == expected);
        EXPECT_EQ(quantizer.report().clips, reference.report().clips);
        EXPECT_EQ(quantizer.report().peak, reference.report().peak);
        EXPECT_EQ(quantizer.report().frames, numbers.size() / kChannels);
        quantizer.reset();
        EXPECT_TRUE(quantize(quantizer, settings, numbers, 0, random) == expected);

        // Entered behind frames that are heard only.
        constexpr std::size_t kHeard = 16384;
        constexpr std::size_t kFirst = 20001;
        settings.first_frame = kHeard;
        Quantizer late(settings);
        late.run(&numbers[kHeard * kChannels], kFirst - kHeard, nullptr);
        EXPECT_EQ(late.report().peak, 0);
        EXPECT_TRUE(quantize(late, settings, numbers, kFirst, random) ==
                    Bytes(expected.begin() + kFirst * frame_bytes(settings), expected.end()));
      }
    }
  }
}

TEST(Quantizer, TwentyBitsStandAboveFourZeros) {
  QuantizerSettings settings;
  settings.channels = 1;
  settings.format = CORVIN_S20;
  settings.dither = CORVIN_DITHER_NONE;
  const double step = std::ldexp(1.0, -19);
  const double in[] = {0, step, -step, 0.4 * step, 0.6 * step, 0.5, 2, -1 - step};
  const std::int32_t expected[] = {0, 1, -1, 0, 1, 1 << 18, (1 << 19) - 1, -(1 << 19)};
  std::uint8_t out[3 * std::size(in)];
  Quantizer quantizer(settings);
  quantizer.run(in, std::size(in), out);
  for (std::size_t i = 0; i < std::size(in); ++i) {
    const std::uint32_t word = static_cast<std::uint32_t>(expected[i]) << 4;
    for (int byte : {0, 1, 2}) {
      EXPECT_EQ(out[3 * i + byte], static_cast<std::uint8_t>(word >> 8 * byte)) << i;
    }
  }
  EXPECT_EQ(quantizer.report().clips, 2u);
}

TEST(Quantizer, BearsWhatIsNoNumberAndRefusesWhatIsNoSetting) {
  constexpr double kInfinite = std::numeric_limits<double>::infinity();
  double frames[] = {std::nan(""), kInfinite, -kInfinite, 1e300, 0.25, 0};
  QuantizerSettings settings;
  settings.format = CORVIN_S16;
  settings.dither = CORVIN_DITHER_SHAPED;
  settings.gain_db = 60;
  Quantizer quantizer(settings);
  quantizer.run(frames, 3, frames);  // to where they come from
  std::int16_t out[6];
  std::memcpy(out, frames, sizeof out);
  EXPECT_LT(std::abs(out[0]), 4);
  EXPECT_EQ(out[1], 32767);
  EXPECT_EQ(out[2], -32768);
  EXPECT_EQ(out[3], 32767);
  EXPECT_DOUBLE_EQ(quantizer.report().peak, 65536 * 1000.0);
  const auto status = [](auto change) {
    QuantizerSettings changed;
    change(changed);
    return status_of([&] { Quantizer made(changed); });
  };
  using S = QuantizerSettings;
  EXPECT_EQ(status([](S& s) { s.pcm_rate = 7999; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.pcm_rate = 768001; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.channels = 65; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.format = CORVIN_S20 + 1; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.gain_db = std::nan(""); }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.first_frame = ~std::uint64_t{0}; }), CORVIN_E_ARGUMENT);
}

}  // namespace
}  // namespace corvin::studio

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Decoders with worker threads: the same bytes, and a clean end at any moment.

#include <gtest/gtest.h>

#include "tests/support/studio_streams.h"

namespace corvin::studio {
namespace {

DecoderSettings stereo(std::uint32_t threads) {
  DecoderSettings settings;
  settings.pcm_rate = 176400;
  settings.dither = CORVIN_DITHER_SHAPED;
  settings.format = CORVIN_S16;
  settings.threads = threads;
  return settings;
}

TEST(DecoderThreads, AnyNumberReturnsTheSameBytes) {
  Random random(10);
  const Bytes data = random.bytes(400001);
  const Bytes expected = decode(stereo(0), data);
  for (std::uint32_t threads : {1u, 2u, 5u}) {
    const DecoderSettings settings = stereo(threads);
    Decoder decoder(settings);
    EXPECT_TRUE(decode(decoder, settings, data, &random) == expected) << threads;
    EXPECT_EQ(decoder.report().frames, expected.size() / 4);
  }
}

TEST(DecoderThreads, ResetAndDestroyWithWorkInFlight) {
  Random random(11);
  const Bytes data = random.bytes(300000);
  const Bytes expected = decode(stereo(0), data);
  const DecoderSettings settings = stereo(3);
  Decoder decoder(settings);
  for (std::size_t pushed : {300000u, 150000u, 20000u, 1u}) {
    decoder.push(std::span(data).first(pushed));
    decoder.reset();
    EXPECT_TRUE(decode(decoder, settings, data) == expected) << pushed;
    decoder.reset();
  }
  constexpr std::size_t kByte = 200000;
  for (std::size_t pushed : {300000u, 20000u}) {
    decoder.push(std::span(data).first(pushed));
    decoder.seek(8 * kByte / 2);
    const std::size_t first = kByte - 2 * std::min<std::size_t>(decoder.preroll(), kByte / 2);
    const Bytes rest(data.begin() + static_cast<std::ptrdiff_t>(first), data.end());
    const std::size_t skipped = decoder.frames(8 * kByte / 2) * 4;
    EXPECT_TRUE(decode(decoder, settings, rest) ==
                Bytes(expected.begin() + static_cast<std::ptrdiff_t>(skipped), expected.end()))
        << pushed;
    decoder.reset();
  }
  for (int i = 0; i < 20; ++i) {
    Decoder abandoned(settings);
    abandoned.push(std::span(data).first(random() % data.size()));
  }
}

}  // namespace
}  // namespace corvin::studio

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Encoders with worker threads: the same bytes, and a clean end at any moment.

#include <gtest/gtest.h>

#include "tests/support/studio_streams.h"

namespace corvin::studio {
namespace {

EncoderSettings settings_of(std::uint32_t channels, std::uint32_t threads) {
  EncoderSettings settings;
  settings.channels = channels;
  settings.format = CORVIN_S16;
  settings.threads = threads;
  settings.block_bytes = 4096;
  settings.low_latency = 1;  // pieces small enough for the ring to go round
  // So slow that pieces wait for it and a wrong order shows, even on one processor.
  settings.modulator = CORVIN_MODULATOR_BEST;
  return settings;
}

TEST(EncoderThreads, AnyNumberReturnsTheSameBytes) {
  Random random(41);
  for (std::uint32_t channels : {1u, 2u, 5u}) {
    const Bytes data = random.quiet_pcm(20000 * channels, 2);
    const EncoderSettings plain = settings_of(channels, 0);
    Encoder alone(plain);
    const Bytes expected = encode(alone, plain, data);
    for (std::uint32_t threads : {1u, 2u, 7u}) {
      const EncoderSettings settings = settings_of(channels, threads);
      Encoder encoder(settings);
      EXPECT_TRUE(encode(encoder, settings, data, &random) == expected)
          << channels << " channels, " << threads << " threads";
      EXPECT_EQ(encoder.report().samples, alone.report().samples);
      EXPECT_EQ(encoder.report().peak, alone.report().peak);
    }
  }
}

TEST(EncoderThreads, ResetAndDestroyWithWorkInFlight) {
  Random random(42);
  const Bytes data = random.quiet_pcm(20000 * 3, 2);
  const Bytes expected = encode(settings_of(3, 0), data);
  const EncoderSettings settings = settings_of(3, 3);
  Encoder encoder(settings);
  for (std::size_t pushed : {20000u, 9000u, 1u}) {
    encoder.push(data.data(), pushed);
    encoder.reset();
    EXPECT_TRUE(encode(encoder, settings, data) == expected) << pushed;
    encoder.reset();
  }
  for (int i = 0; i < 10; ++i) {
    Encoder abandoned(settings);
    abandoned.push(data.data(), random() % 20000);
  }
}

}  // namespace
}  // namespace corvin::studio

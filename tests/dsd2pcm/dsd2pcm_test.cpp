// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <numbers>
#include <random>
#include <span>
#include <thread>
#include <vector>

#include "corvin.h"
#include "dsd2pcm/taps.h"

namespace {

using corvin::dsd2pcm::htaps;
using Bytes = std::vector<std::uint8_t>;
using Floats = std::vector<float>;

struct Destroy {
  void operator()(dsd2pcm_state* state) const { dsd2pcm_destroy(state); }
};
using Converter = std::unique_ptr<dsd2pcm_state, Destroy>;

Converter NewConverter() { return Converter(dsd2pcm_init()); }

Floats Translate(dsd2pcm_state* state, std::span<const std::uint8_t> bytes, bool lsbfirst = false) {
  Floats out(bytes.size());
  dsd2pcm_translate(state, bytes.size(), bytes.data(), 1, lsbfirst, out.data(), 1);
  return out;
}

Bytes RandomBytes(std::size_t count, unsigned seed) {
  std::mt19937 random(seed);
  Bytes bytes(count);
  for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
  return bytes;
}

std::uint8_t Reversed(std::uint8_t byte) {
  unsigned reversed = 0;
  for (int bit = 0; bit < 8; ++bit) reversed = reversed << 1 | (byte >> bit & 1);
  return static_cast<std::uint8_t>(reversed);
}

/// The eleven bytes that a fresh converter has heard, oldest first: the ring holds the idle byte,
/// and its older half, where bytes are held reversed, holds it too.
Bytes FreshPast() {
  Bytes past(5, Reversed(0x69));
  past.resize(11, 0x69);
  return past;
}

// Twelve table entries below 0.5 are each rounded to single precision, six pairs and the sum too:
// (12 x 0.25 + 6 x 0.5 + 0.5) x 2^-24 at most.
constexpr double kRounding = 4e-7;

TEST(Dsd2Pcm, IsTheConvolutionFromTheFirstByteOn) {
  const Bytes bytes = RandomBytes(1000, 1);
  const Converter converter = NewConverter();
  for (const char* pass : {"new", "reset"}) {
    const Floats out = Translate(converter.get(), bytes);
    Bytes heard = FreshPast();
    heard.insert(heard.end(), bytes.begin(), bytes.end());
    for (std::size_t n = 0; n < out.size(); ++n) {
      double expected = 0;
      for (std::size_t tap = 0; tap < 96; ++tap) {  // 96 bits end with heard[n + 11]
        const bool one = heard[n + tap / 8] >> (7 - tap % 8) & 1;
        expected += (one ? 1 : -1) * htaps[tap < 48 ? 47 - tap : tap - 48];
      }
      ASSERT_NEAR(out[n], expected, kRounding) << pass << " " << n;
    }
    dsd2pcm_reset(converter.get());
  }
}

// The order of additions is part of the result: eight taps in double, rounded; the two halves' sums
// added in single; six of those in double.
TEST(Dsd2Pcm, RoundsInTheStatedOrder) {
  const Bytes bytes = RandomBytes(1000, 2);
  const Floats out = Translate(NewConverter().get(), bytes);
  for (std::size_t n = 11; n < out.size(); ++n) {
    double expected = 0;
    for (std::size_t i = 0; i < 6; ++i) {
      const auto entry = [&](std::uint8_t byte) {
        double sum = 0;
        for (std::size_t j = 0; j < 8; ++j) {
          sum += (byte >> (7 - j) & 1 ? 1 : -1) * htaps[8 * (5 - i) + j];
        }
        return static_cast<float>(sum);
      };
      const float pair = entry(bytes[n - i]) + entry(Reversed(bytes[n - 11 + i]));
      expected += pair;
    }
    ASSERT_EQ(out[n], static_cast<float>(expected)) << n;
  }
}

TEST(Dsd2Pcm, Levels) {
  const auto settled = [](std::uint8_t byte) {
    return Translate(NewConverter().get(), Bytes(12, byte)).back();
  };
  EXPECT_FLOAT_EQ(settled(0xff), 0.99999696f);
  EXPECT_EQ(settled(0x00), -settled(0xff));
  EXPECT_EQ(settled(0x69), 0.0f);
}

// What a host hears: a modulated tone keeps its level and comes 5.5 floats later.
TEST(Dsd2Pcm, ToneComesThroughFiveAndAHalfFloatsLater) {
  constexpr std::size_t kBytes = 20000;
  constexpr double kTurn = 2 * std::numbers::pi * 1000 / 2822400;
  Bytes bytes(kBytes);
  double first = 0;
  double second = 0;
  for (std::size_t i = 0; i < kBytes * 8; ++i) {  // a second-order modulator
    const double in = 0.5 * std::sin(kTurn * static_cast<double>(i));
    const bool one = second >= 0;
    first += in - (one ? 1 : -1);
    second += first - (one ? 1 : -1);
    if (one) bytes[i / 8] = static_cast<std::uint8_t>(bytes[i / 8] | 0x80 >> i % 8);
  }
  const Floats out = Translate(NewConverter().get(), bytes);
  double sine = 0;
  double cosine = 0;
  constexpr int kFloats = 17640;  // 50 periods
  for (std::size_t n = 100; n < 100 + kFloats; ++n) {
    // 5.5 floats, 44 samples, before the middle of byte n, which is sample 8 n + 3.5.
    const double at = kTurn * (8.0 * static_cast<double>(n) - 40.5);
    sine += out[n] * std::sin(at);
    cosine += out[n] * std::cos(at);
  }
  // The modulator itself delays by up to two samples, 0.0045 radians.
  EXPECT_NEAR(sine * 2 / kFloats, 0.5, 0.002);
  EXPECT_NEAR(cosine * 2 / kFloats, 0.0, 0.003);
}

TEST(Dsd2Pcm, AnyDivisionIntoCallsAndBothBitOrders) {
  const Bytes bytes = RandomBytes(500, 3);
  const Floats whole = Translate(NewConverter().get(), bytes);
  Bytes reversed(bytes.size());
  std::transform(bytes.begin(), bytes.end(), reversed.begin(), Reversed);
  EXPECT_EQ(Translate(NewConverter().get(), reversed, true), whole);

  const Converter pieces = NewConverter();
  Floats joined;
  std::mt19937 random(4);
  for (std::size_t at = 0; at < bytes.size();) {
    const std::size_t count = std::min<std::size_t>(random() % 40, bytes.size() - at);
    const Floats piece = Translate(pieces.get(), std::span(bytes).subspan(at, count));
    joined.insert(joined.end(), piece.begin(), piece.end());
    at += count;
    dsd2pcm_translate(pieces.get(), 0, nullptr, 7, 0, nullptr, 7);
  }
  EXPECT_EQ(joined, whole);
}

TEST(Dsd2Pcm, StridesTouchOneChannelOnly) {
  constexpr std::size_t kFrames = 100;
  const Bytes left = RandomBytes(kFrames, 5);
  const Bytes right = RandomBytes(kFrames, 6);
  Bytes frames(3 * kFrames);  // the third channel is not converted
  for (std::size_t n = 0; n < kFrames; ++n) {
    frames[3 * n] = left[n];
    frames[3 * n + 1] = right[n];
  }
  // No byte or float behind the last one belongs to the caller: exact sizes, for the sanitizers.
  frames.resize(3 * kFrames - 1);
  frames.shrink_to_fit();
  Floats out(2 * kFrames, 9.0f);
  dsd2pcm_translate(NewConverter().get(), kFrames, frames.data(), 3, 0, out.data(), 2);
  for (std::size_t n = 0; n < kFrames; ++n) ASSERT_EQ(out[2 * n + 1], 9.0f) << n;
  dsd2pcm_translate(NewConverter().get(), kFrames, frames.data() + 1, 3, 0, out.data() + 1, 2);
  const Floats expected_left = Translate(NewConverter().get(), left);
  const Floats expected_right = Translate(NewConverter().get(), right);
  for (std::size_t n = 0; n < kFrames; ++n) {
    ASSERT_EQ(out[2 * n], expected_left[n]) << n;
    ASSERT_EQ(out[2 * n + 1], expected_right[n]) << n;
  }
  // Backwards through the source.
  Bytes mirrored(left.rbegin(), left.rend());
  dsd2pcm_translate(NewConverter().get(), kFrames, &mirrored.back(), -1, 0, out.data(), 1);
  EXPECT_TRUE(std::equal(expected_left.begin(), expected_left.end(), out.begin()));
}

TEST(Dsd2Pcm, CloneGoesOnAsItsSourceWould) {
  const Bytes bytes = RandomBytes(53, 7);
  const Converter source = NewConverter();
  Translate(source.get(), bytes);
  const Converter clone(dsd2pcm_clone(source.get()));
  const Floats cloned = Translate(clone.get(), bytes);
  EXPECT_EQ(Translate(source.get(), bytes), cloned);
  EXPECT_NE(cloned, Translate(NewConverter().get(), bytes)) << "the past counts";
}

TEST(Dsd2Pcm, FirstConvertersOfSeveralThreads) {
  const Bytes bytes = RandomBytes(64, 8);
  std::vector<Floats> results(4);
  std::vector<std::thread> threads;
  for (Floats& result : results) {
    threads.emplace_back([&] { result = Translate(NewConverter().get(), bytes); });
  }
  for (std::thread& thread : threads) thread.join();
  for (const Floats& result : results) EXPECT_EQ(result, results[0]);
}

}  // namespace

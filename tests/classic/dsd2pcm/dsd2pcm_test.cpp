// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <future>
#include <memory>
#include <numbers>
#include <random>
#include <span>
#include <vector>

#include "classic/dsd2pcm/taps.h"
#include "corvin.h"

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

TEST(Dsd2Pcm, PassesTheAudibleBandAndStopsAbove300kHz) {
  const auto response = [](double hz) {
    double sum = 0;
    for (std::size_t i = 0; i < 48; ++i)
      sum += 2 * htaps[i] *
             std::cos(2 * std::numbers::pi * hz / 2822400 * (static_cast<double>(i) + 0.5));
    return sum;
  };
  for (double hz = 0; hz <= 20000; hz += 1000) EXPECT_NEAR(response(hz), 1, 2e-4) << hz;
  // 150 dB below: no tap may be off by more than its eighth digit.
  for (double hz = 300000; hz < 1411200; hz += 1000) EXPECT_NEAR(response(hz), 0, 3.2e-8) << hz;
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
  // The last frame has one channel of three: no byte behind it belongs to the caller. Exact sizes,
  // for the sanitizers.
  const Bytes frames = RandomBytes(3 * kFrames - 2, 5);
  Bytes left;
  for (std::size_t n = 0; n < kFrames; ++n) left.push_back(frames[3 * n]);
  const Floats expected = Translate(NewConverter().get(), left);
  Floats out(2 * kFrames - 1, 9.0f);
  dsd2pcm_translate(NewConverter().get(), kFrames, frames.data(), 3, 0, out.data(), 2);
  for (std::size_t n = 0; n < out.size(); ++n)
    ASSERT_EQ(out[n], n % 2 == 0 ? expected[n / 2] : 9.0f) << n;
  // Backwards through the source.
  std::reverse(left.begin(), left.end());
  dsd2pcm_translate(NewConverter().get(), kFrames, &left.back(), -1, 0, out.data(), 1);
  EXPECT_TRUE(std::equal(expected.begin(), expected.end(), out.begin()));
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

// The tables are made before the first converter: several may be created at once.
TEST(Dsd2Pcm, FirstConvertersOfSeveralThreads) {
  const Bytes bytes = RandomBytes(64, 8);
  std::vector<std::future<Floats>> running(4);
  for (auto& result : running)
    result = std::async(std::launch::async, [&] { return Translate(NewConverter().get(), bytes); });
  const Floats alone = Translate(NewConverter().get(), bytes);
  for (auto& result : running) EXPECT_EQ(result.get(), alone);
}

TEST(Dsd2Pcm, NullPointersChangeNothing) {
  dsd2pcm_reset(nullptr);
  dsd2pcm_destroy(nullptr);
  EXPECT_EQ(dsd2pcm_clone(nullptr), nullptr);
  const Bytes bytes = RandomBytes(40, 3);
  const Converter state = NewConverter();
  float out = 7;
  dsd2pcm_translate(nullptr, 1, bytes.data(), 1, 0, &out, 1);
  dsd2pcm_translate(state.get(), 1, nullptr, 1, 0, &out, 1);
  dsd2pcm_translate(state.get(), 1, bytes.data(), 1, 0, nullptr, 1);
  EXPECT_EQ(out, 7);
  EXPECT_EQ(Translate(state.get(), bytes), Translate(NewConverter().get(), bytes));
}

}  // namespace

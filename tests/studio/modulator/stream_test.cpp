// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The same bytes in any chunks, from every build of the kernels, alone or in a pair, and for ever.

#include <gtest/gtest.h>

#include "tests/support/kernel_builds.h"
#include "tests/support/modulator_streams.h"

namespace corvin::studio {
namespace {

// A triangle wave with stretches that throw the loops of one path out of lock; a search takes more
// than that. Integer arithmetic, since the library's sine may differ in the last bit.
Samples eventful(std::size_t count, int period) {
  Random random(3);
  Samples samples(count);
  for (std::size_t i = 0; i < count; ++i) {
    const int at = static_cast<int>(i) % period;
    const int height = 2 * at < period ? at : period - at;
    const double noise = random() / 33554432.0 - 32;
    samples[i] = i % 5000 > 4400 ? noise : (4.0 * height / period - 1.0) * 0.6;
  }
  return samples;
}

struct Kind {
  ModulatorConfig config;
  std::uint64_t checksum;
};
const Kind kKinds[] = {{{ModulatorGrade::kStandard, 64, false}, 0x3265846c8abaf891},
                       {{ModulatorGrade::kStandard, 64, true}, 0xcf98d8c4ead55dfa},
                       {{ModulatorGrade::kStandard, 256, false}, 0xb0d058e65212b1f},
                       {{ModulatorGrade::kStandard, 512, true}, 0x8929d4fb3112487a},
                       {{ModulatorGrade::kHigh, 64, false}, 0x3049d7e404a1a7dd},
                       {{ModulatorGrade::kHigh, 128, true}, 0x9e790555964d8a7e},
                       {{ModulatorGrade::kBest, 64, true}, 0x2877e7d3b8c51640},
                       {{ModulatorGrade::kBest, 128, false}, 0xbb98d2f83544ed5c}};

// Pins the bits across compilers, systems and time. They may change only on purpose.
TEST(ModulatorStream, KnownAnswersFromEveryBuildInAnyChunks) {
  const std::vector<Samples> in = {eventful(16000, 353), eventful(16000, 97)};
  for (const Kind& kind : kKinds) {
    const auto sum = [&](const ModulatorConfig& config, std::size_t chunk) {
      Modulated made = modulate(config, in, chunk);
      if (config.grade == ModulatorGrade::kStandard) {
        EXPECT_GT(made.overloads[0], 0u);
      }
      made.bytes[0].insert(made.bytes[0].end(), made.bytes[1].begin(), made.bytes[1].end());
      return checksum(made.bytes[0]);
    };
    ModulatorConfig config = kind.config;
    for (std::uint32_t mask : kernel_masks()) {
      config.kernel_mask = mask;
      EXPECT_EQ(sum(config, 16000), kind.checksum) << "mask " << mask;
    }
    for (std::size_t chunk : {1u, 3u, 7u, 64u, 1021u}) {
      EXPECT_EQ(sum(kind.config, chunk), kind.checksum) << "chunk " << chunk;
    }
  }
}

TEST(ModulatorStream, ShortStreamsHaveAllTheirBytes) {
  for (const Kind& kind : kKinds) {
    const Samples in = faded_sine(3000, 0.5, 200);
    const Bytes whole = modulate(kind.config, in).bytes[0];
    for (std::ptrdiff_t count : {0, 1, 2, 3, 4, 5, 71, 72, 73, 150}) {
      const Bytes bytes = modulate(kind.config, Samples(in.begin(), in.begin() + count)).bytes[0];
      ASSERT_EQ(bytes.size(), count);
      // Bytes before the last ones' look-ahead do not know that the stream ends.
      const auto sure = std::max<std::ptrdiff_t>(count - 72, 0);
      EXPECT_TRUE(std::equal(bytes.begin(), bytes.begin() + sure, whole.begin()));
    }
  }
}

TEST(ModulatorStream, ChannelsDoNotMeetAndResetEqualsNew) {
  for (const Kind& kind : kKinds) {
    const Samples wild = eventful(9000, 353);
    const Samples calm = faded_sine(440, 0.3, 9000);
    const Bytes wild_bytes = modulate(kind.config, wild).bytes[0];
    const Bytes calm_bytes = modulate(kind.config, calm).bytes[0];
    Modulator modulator(kind.config);
    const Modulated one = modulate(modulator, {wild, calm});
    EXPECT_EQ(modulator.overload_events(0), 0u);
    EXPECT_EQ(one.bytes, (std::vector<Bytes>{wild_bytes, calm_bytes}));
    if (kind.config.grade == ModulatorGrade::kStandard) {
      EXPECT_GT(one.overloads[0], 0u);
    }
    EXPECT_EQ(one.overloads[1], 0u);
    // Left in the middle.
    Bytes scrap(9000 + Modulator::kLookAhead);
    const double* from[] = {wild.data(), wild.data()};
    std::uint8_t* to[] = {scrap.data(), scrap.data()};
    EXPECT_GE(modulator.modulate(from, 8000, to) + Modulator::kLookAhead, 8000u);
    modulator.reset();
    const Modulated other = modulate(modulator, {calm, wild});
    EXPECT_EQ(other.bytes, (std::vector<Bytes>{calm_bytes, wild_bytes}));
    EXPECT_EQ(other.overloads[0], 0u);
    EXPECT_EQ(other.overloads[1], one.overloads[0]);
  }
}

// Two channels of four paths share the lanes, whose numbers sit in the costs' last bits: costs that
// rounded by the side would lead to other bits after a while, for most signals but not for all.
TEST(ModulatorStream, SharedLanesGiveEitherSideTheSameBits) {
  const ModulatorConfig config = {ModulatorGrade::kHigh};
  for (int i = 0; i < 6; ++i) {
    const Samples one = faded_sine(100 + 331.7 * i, 0.02 + 0.08 * i, 30000);
    const Samples other = faded_sine(7000 - 777.0 * i, 0.4, 30000);
    const Bytes alone = modulate(config, one).bytes[0];
    EXPECT_EQ(modulate(config, {other, one}).bytes[1], alone) << i;
    EXPECT_EQ(modulate(config, {one, other}).bytes[0], alone) << i;
  }
}

}  // namespace
}  // namespace corvin::studio

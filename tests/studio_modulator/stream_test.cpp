// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The same bytes in any chunks, from every build of the kernels, alone or in a pair, and for ever.

#include <gtest/gtest.h>

#include <cstdio>

#include "studio/kernels/block_loop.h"
#include "studio/kernels/path_search.h"
#include "tests/studio_modulator/streams.h"

namespace corvin::studio {
namespace {

using testing::Bytes;
using testing::modulate;
using testing::Modulated;
using testing::Samples;
using testing::sine;

// With stretches that throw the loops of one path out of lock; a search takes more than that.
Samples eventful(std::size_t count, std::uint32_t seed) {
  Samples samples = sine(997 + seed, 0.6, count);
  std::uint32_t state = seed;
  for (std::size_t i = 0; i < count; ++i) {
    state = state * 1664525u + 1013904223u;
    if (i % 5000 > 4400) samples[i] = static_cast<std::int32_t>(state) * 0x1p-26;
  }
  return samples;
}

struct Kind {
  ModulatorGrade grade;
  int oversampling;
  bool wide_band;
};
constexpr Kind kKinds[] = {
    {ModulatorGrade::kStandard, 64, false},  {ModulatorGrade::kStandard, 64, true},
    {ModulatorGrade::kStandard, 256, false}, {ModulatorGrade::kStandard, 512, true},
    {ModulatorGrade::kHigh, 64, false},      {ModulatorGrade::kHigh, 128, true},
    {ModulatorGrade::kBest, 64, true},       {ModulatorGrade::kBest, 128, false}};

ModulatorConfig config_for(const Kind& kind) {
  ModulatorConfig config;
  config.grade = kind.grade;
  config.oversampling = kind.oversampling;
  config.wide_band = kind.wide_band;
  return config;
}

TEST(ModulatorStream, EveryChunkingGivesTheSameBytes) {
  for (const Kind& kind : kKinds) {
    const std::vector<Samples> in = {eventful(9001, 1), eventful(9001, 2)};
    const Modulated whole = modulate(config_for(kind), in, 9001);
    ASSERT_EQ(whole.bytes[0].size(), 9001u);
    if (kind.grade == ModulatorGrade::kStandard) {
      EXPECT_GT(whole.overloads[0], 0u);
    }
    for (std::size_t chunk : {1u, 2u, 3u, 7u, 64u, 1021u}) {
      const Modulated cut = modulate(config_for(kind), in, chunk);
      EXPECT_EQ(cut.bytes, whole.bytes) << chunk;
      EXPECT_EQ(cut.overloads[0], whole.overloads[0]);
    }
  }
}

TEST(ModulatorStream, ShortStreamsHaveAllTheirBytes) {
  for (const Kind& kind : kKinds) {
    const Samples in = sine(3000, 0.5, 200);
    const Bytes whole = modulate(config_for(kind), in).bytes[0];
    for (std::size_t count : {0u, 1u, 2u, 3u, 4u, 5u, 71u, 72u, 73u}) {
      const Samples part(in.begin(), in.begin() + static_cast<std::ptrdiff_t>(count));
      EXPECT_EQ(modulate(config_for(kind), part).bytes[0].size(), count);
    }
    // Bytes before the last ones' look-ahead do not know that the stream ends.
    const Samples part(in.begin(), in.begin() + 150);
    const Bytes bytes = modulate(config_for(kind), part).bytes[0];
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.begin() + 150 - 72, whole.begin()));
  }
}

TEST(ModulatorStream, ChannelsDoNotMeet) {
  for (const Kind& kind : kKinds) {
    const Samples wild = eventful(9000, 3);
    const Samples calm = sine(440, 0.3, 9000);
    const Bytes wild_bytes = modulate(config_for(kind), wild).bytes[0];
    const Bytes calm_bytes = modulate(config_for(kind), calm).bytes[0];
    const Modulated one = modulate(config_for(kind), {wild, calm});
    const Modulated other = modulate(config_for(kind), {calm, wild});
    EXPECT_EQ(one.bytes[0], wild_bytes);
    EXPECT_EQ(one.bytes[1], calm_bytes);
    EXPECT_EQ(other.bytes[0], calm_bytes);
    EXPECT_EQ(other.bytes[1], wild_bytes);
    if (kind.grade == ModulatorGrade::kStandard) {
      EXPECT_GT(one.overloads[0], 0u);
    }
    EXPECT_EQ(one.overloads[1], 0u);
    EXPECT_EQ(other.overloads[0], 0u);
    EXPECT_EQ(other.overloads[1], one.overloads[0]);
  }
}

TEST(ModulatorStream, ResetEqualsNew) {
  for (const Kind& kind : kKinds) {
    ModulatorConfig config = config_for(kind);
    config.channels = 1;
    Modulator modulator(config);
    const Samples in = eventful(6000, 5);
    const Bytes expected = modulate(config, in).bytes[0];
    for (int round = 0; round < 3; ++round) {
      Bytes bytes(in.size() + 2 * Modulator::kLookAhead);
      const double* from = in.data();
      std::uint8_t* to = bytes.data();
      std::size_t written = modulator.modulate(&from, in.size(), &to);
      EXPECT_GE(written + Modulator::kLookAhead, in.size());
      if (round == 1) {  // left in the middle
        modulator.reset();
        continue;
      }
      to += written;
      written += modulator.finish(&to);
      bytes.resize(written);
      EXPECT_EQ(bytes, expected) << round;
      modulator.reset();
      EXPECT_EQ(modulator.overload_events(0), 0u);
    }
  }
}

TEST(ModulatorStream, EveryBuildGivesTheSameBytes) {
  constexpr std::uint32_t kMasks[] = {0, kCpuSse2, kCpuSse2 | kCpuAvx2,
                                      kCpuSse2 | kCpuAvx2 | kCpuAvx512};
  for (const Kind& kind : kKinds) {
    const std::vector<Samples> in = {eventful(8011, 7), eventful(8011, 8)};
    ModulatorConfig config = config_for(kind);
    config.kernel_mask = 0;
    const Modulated expected = modulate(config, in);
    for (std::uint32_t mask : kMasks) {
      if ((mask & ~detected_features()) != 0) {
        std::printf("[ SKIPPED  ] the processor lacks features of mask %u\n", mask);
        continue;
      }
      config.kernel_mask = mask;
      EXPECT_EQ(modulate(config, in).bytes, expected.bytes)
          << choose_block_loop(mask).info.name << ", " << choose_path_search(mask).info.name;
    }
  }
}

TEST(ModulatorStream, TheMaskedBuildIsTheOneThatRuns) {
  const struct {
    std::uint32_t mask;
    const char* blocks;
    const char* paths;
  } kRows[] = {{0, "portable", "portable"},
               {kCpuSse2, "SSE2", "portable"},
               {kCpuSse2 | kCpuAvx2, "AVX2", "AVX2"},
               {kCpuSse2 | kCpuAvx2 | kCpuAvx512, "AVX2", "AVX-512"}};
  for (const auto& row : kRows) {
    if ((row.mask & ~detected_features()) != 0) continue;
    EXPECT_STREQ(choose_block_loop(row.mask).info.name, row.blocks);
    EXPECT_STREQ(choose_path_search(row.mask).info.name, row.paths);
  }
}

std::uint64_t fingerprint(const Modulated& made) {
  std::uint64_t hash = 0xcbf29ce484222325u;
  for (const Bytes& channel : made.bytes) {
    for (std::uint8_t byte : channel) hash = (hash ^ byte) * 0x100000001b3u;
  }
  return hash;
}

// Integer arithmetic, since the library's sine may differ in the last bit.
Samples triangle(std::size_t count, int period, int offset) {
  Samples samples(count);
  for (std::size_t i = 0; i < count; ++i) {
    const int at = (static_cast<int>(i) + offset) % period;
    const int height = 2 * at < period ? at : period - at;
    samples[i] = (4.0 * height / period - 1.0) * (i % 7000 > 6800 ? 3.0 : 0.6);
  }
  return samples;
}

// Pins the bits across compilers, systems and time. They may change only on purpose.
TEST(ModulatorStream, KnownAnswers) {
  constexpr std::uint64_t kExpected[] = {0xa51160c5753af2c8, 0x1d121325e161af6c, 0x375147343c219c0e,
                                         0x49db06743b37e4f,  0xaa9de57de4a1db94, 0x22a5248b4756a32f,
                                         0xab44e41f77d9e97e, 0xf87b4b046517ef93};
  for (std::size_t i = 0; i < std::size(kKinds); ++i) {
    const Modulated made =
        modulate(config_for(kKinds[i]), {triangle(30000, 353, 0), triangle(30000, 97, 40)});
    EXPECT_EQ(fingerprint(made), kExpected[i])
        << "kind " << i << ": 0x" << std::hex << fingerprint(made);
  }
}

}  // namespace
}  // namespace corvin::studio

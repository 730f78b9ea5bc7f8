// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Every build of every kernel returns the bits of the plain one, and the plain ones what their
// definitions say.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <numeric>

#include "studio/decode/block_filter.h"
#include "studio/plan/exact_math.h"
#include "tests/studio/builds.h"
#include "tests/studio/streams.h"

namespace corvin::studio {
namespace {

TEST(Kernels, TheMaskedBuildIsTheOneThatRuns) {
  const char* const names[] = {"portable", "SSE2", "AVX2", "AVX-512"};
  for (std::size_t i = 0; i < std::size(kMasks); ++i) {
    if ((kMasks[i] & ~detected_features()) != 0) continue;
    const Kernels kernels = choose_kernels(kMasks[i]);
    EXPECT_STREQ(kernels.bit_fir->info.name, names[i]);
    EXPECT_STREQ(kernels.fold_fir->info.name, names[i]);
    EXPECT_STREQ(kernels.spectral->info.name, names[i]);
    EXPECT_STREQ(kernels.quantise->info.name, names[i]);
    EXPECT_STREQ(kernels.interpolate->info.name, names[i]);
  }
}

TEST(Kernels, BitFirIsAPlainConvolutionInBothBitOrders) {
  constexpr std::size_t kColumns = 7;
  constexpr std::size_t kSteps = 65;
  Random random(4);
  for (const Kernels& kernels : all_builds()) {
    for (std::uint32_t pcm_rate : {44100u, 88200u, 176400u, 352800u, 705600u}) {
      for (std::uint32_t dsd_rate : {2822400u, 11289600u}) {
        for (bool lsb_first : {false, true}) {
          DecodePlanConfig config;
          config.dsd_rate = dsd_rate;
          config.pcm_rate = pcm_rate;
          config.lsb_first = lsb_first;
          config.row_stride_12 = kernels.bit_fir->row_stride_12;
          const DecodePlan plan = *make_decode_plan(config);
          const BitFirTable& table = plan.bit_table;
          const std::size_t warm = table.warm_steps();
          const Bytes bytes = random.bytes((warm + kSteps) * table.bytes_per_step + kColumns);
          // Each column from another address, one of them idle.
          std::vector<const std::uint8_t*> in;
          for (std::size_t c = 0; c < kColumns; ++c) in.push_back(c == 3 ? nullptr : &bytes[c]);
          const std::size_t rows = kSteps * table.outputs_per_step;
          std::vector<std::int32_t> out(rows * kColumns + 1, 12345);
          kernels.bit_fir->run(table, in.data(), kColumns, kSteps, out.data());
          EXPECT_EQ(out.back(), 12345);

          const std::size_t decimation = plan.bit_boxcars.decimation();
          for (std::size_t i = 0; i < rows * kColumns; ++i) {
            const std::size_t row = i / kColumns;
            const std::size_t column = i % kColumns;
            std::int64_t sum = column == 3 ? 12345 : 0;
            const std::size_t newest = warm * table.bytes_per_step * 8 + (row + 1) * decimation - 1;
            for (std::size_t t = 0; t < plan.bit_taps.size() && column != 3; ++t) {
              const std::size_t bit = newest - t;
              const unsigned place = static_cast<unsigned>(lsb_first ? bit % 8 : 7 - bit % 8);
              sum += (in[column][bit / 8] >> place & 1) != 0 ? plan.bit_taps[t] : -plan.bit_taps[t];
            }
            ASSERT_EQ(out[i], sum) << kernels.bit_fir->info.name << " by " << decimation << ", row "
                                   << row << ", column " << column;
          }
        }
      }
    }
  }
}

TEST(Kernels, FoldFirAgreesToTheBit) {
  Random random(5);
  const std::vector<Kernels> builds = all_builds();
  for (std::size_t taps : {1u, 2u, 13u, 34u, 85u}) {
    for (std::size_t columns : {2u, 4u, 6u, 16u}) {
      for (std::size_t count : {1u, 3u, 4u, 9u}) {
        constexpr std::size_t kDecimation = 4;
        AlignedArray<std::int32_t> rows(((count - 1) * kDecimation + taps) * columns);
        for (std::size_t i = 0; i < rows.size(); ++i) {
          rows[i] = static_cast<std::int32_t>(random()) - (1 << 30);
        }
        std::vector<double> half((taps + 1) / 2);
        for (double& tap : half) tap = random() / 3e9;
        AlignedArray<double> expected(count * columns);
        builds[0].fold_fir->run(rows.data(), columns, half.data(), taps, kDecimation,
                                expected.data(), count);
        long double sum = 0;
        for (std::size_t t = 0; t < taps; ++t) {
          sum += static_cast<long double>(half[std::min(t, taps - 1 - t)]) * rows[t * columns];
        }
        // Each of the taps' roundings is at most 2^-53 of sums below taps x 2^30.
        EXPECT_NEAR(expected[0], static_cast<double>(sum),
                    std::ldexp(static_cast<double>(taps * taps), 30 - 52));
        for (const Kernels& kernels : builds) {
          AlignedArray<double> out(count * columns);
          kernels.fold_fir->run(rows.data(), columns, half.data(), taps, kDecimation, out.data(),
                                count);
          EXPECT_EQ(std::memcmp(out.data(), expected.data(), count * columns * sizeof(double)), 0)
              << kernels.fold_fir->info.name << ", taps " << taps << ", columns " << columns;
        }
      }
    }
  }
}

TEST(Kernels, TransformsAreTheDefiningSums) {
  Random random(6);
  for (std::size_t points :
       {16u, 105u, 2048u, 2352u, 2560u, 4096u, 4704u, 5120u, 8192u, 9408u, 10240u, 18816u}) {
    const FftPlan plan = make_fft_plan(points);
    std::vector<double> data(2 * points);
    for (double& value : data) value = random() / 2147483648.0 - 0.5;
    std::vector<double> bins = data;
    spectral_portable.to_bins(plan, bins.data());
    for (std::size_t bin = 0; bin < points; bin += points / 7) {
      long double re = 0;
      long double im = 0;
      for (std::size_t i = 0; i < points; ++i) {
        const SineCosine w =
            turn(static_cast<std::int64_t>(i * bin % points), static_cast<std::int64_t>(points));
        re += static_cast<long double>(data[2 * i]) * w.cosine +
              static_cast<long double>(data[2 * i + 1]) * w.sine;
        im += static_cast<long double>(data[2 * i + 1]) * w.cosine -
              static_cast<long double>(data[2 * i]) * w.sine;
      }
      // A few roundings of 1e-16 in each of the passes, growing with the root of the points.
      const double bound = 3e-15 * std::sqrt(static_cast<double>(points));
      EXPECT_NEAR(bins[2 * plan.position(bin)], static_cast<double>(re), bound) << points;
      EXPECT_NEAR(bins[2 * plan.position(bin) + 1], static_cast<double>(im), bound) << points;
    }
    // Back through the other direction, with the parts exchanged.
    for (std::size_t i = 0; i < points; ++i) std::swap(bins[2 * i], bins[2 * i + 1]);
    spectral_portable.from_bins(plan, bins.data());
    for (std::size_t i = 0; i < points; ++i) {
      ASSERT_NEAR(bins[2 * i + 1] / static_cast<double>(points), data[2 * i], 1e-14) << points;
    }
  }
}

TEST(Kernels, ItemsComeOutTheSameInEveryLaneOfEveryBuild) {
  Random random(7);
  for (std::uint32_t pcm_rate : {44100u, 48000u, 96000u, 352800u}) {
    for (std::uint32_t dsd_rate : {2822400u, 3072000u, 11289600u}) {
      DecodePlanConfig config;
      config.dsd_rate = dsd_rate;
      config.pcm_rate = pcm_rate;
      constexpr std::size_t kItems = 8;
      const std::size_t bytes_each = item_bytes(*make_decode_plan(config));
      const Bytes bytes = random.bytes(kItems * bytes_each);
      std::vector<double> expected;
      for (const Kernels& kernels : all_builds()) {
        config.row_stride_12 = kernels.bit_fir->row_stride_12;
        const DecodePlan plan = *make_decode_plan(config);
        BlockFilter filter(plan, kernels);
        const std::size_t frames = item_frames(plan);
        // One number beyond the items guards each of them.
        std::vector<double> out(kItems * (frames + 1), 99.0);
        for (std::size_t item = 0; item < kItems;) {
          // Groups of every size, so that idle lanes occur.
          const std::uint8_t* in[kItems];
          double* places[kItems];
          std::size_t count = 0;
          for (; count < std::min(filter.items_at_once(), item == 0 ? kItems : 3) && item < kItems;
               ++count, ++item) {
            in[count] = &bytes[item * bytes_each];
            places[count] = &out[item * (frames + 1)];
          }
          filter.run(in, places, count);
        }
        for (std::size_t item = 1; item <= kItems; ++item) {
          EXPECT_EQ(out[item * (frames + 1) - 1], 99.0);
        }
        if (expected.empty()) expected = out;
        EXPECT_EQ(std::memcmp(out.data(), expected.data(), out.size() * sizeof(double)), 0)
            << kernels.spectral->info.name << ", " << dsd_rate << " to " << pcm_rate;
      }
    }
  }
}

TEST(Kernels, QuantisersAgreeToTheBit) {
  Random random(8);
  const std::vector<Kernels> builds = all_builds();
  std::vector<std::size_t> lengths(34);
  std::iota(lengths.begin(), lengths.end(), 0u);
  lengths.insert(lengths.end(), {63, 64, 65, 999});
  for (bool dither : {false, true}) {
    for (int bits : {16, 24, 32}) {
      const double full = std::ldexp(1.0, bits - 1);
      const QuantiseScale scale = {full, -full, full - 1, dither};
      for (std::size_t length : lengths) {
        std::vector<double> in(length + 1);
        // Beyond full scale at times; and ties, which go to even.
        for (double& value : in) value = (random() / 2147483648.0 - 0.5) * 2.3;
        if (length > 3) in[2] = 0.5 / full;
        if (length > 3) in[3] = 1.5 / full;
        const auto run = [&](const Kernels& kernels, QuantiseTally& tally) {
          std::vector<std::int32_t> out(length + 1, 77);
          kernels.quantise->run(in.data() + 1, length, scale, 0x12345678, 0xfffffff0u, out.data(),
                                tally);
          return out;
        };
        QuantiseTally expected_tally;
        const std::vector<std::int32_t> expected = run(builds[0], expected_tally);
        if (length > 3 && !dither) {
          EXPECT_EQ(expected[1], 0);
          EXPECT_EQ(expected[2], 2);
        }
        for (const Kernels& kernels : builds) {
          QuantiseTally tally;
          EXPECT_EQ(run(kernels, tally), expected) << kernels.quantise->info.name << ' ' << length;
          EXPECT_EQ(tally.peak, expected_tally.peak);
          EXPECT_EQ(tally.clips, expected_tally.clips);
        }
      }
    }
  }
}

TEST(Kernels, DecodersReturnTheSameBytesWithEveryBuild) {
  Random random(9);
  const Bytes data = random.bytes(3 * 80000);
  for (std::uint32_t pcm_rate : {44100u, 192000u}) {
    DecoderSettings settings;
    settings.channels = 3;
    settings.pcm_rate = pcm_rate;
    settings.kernel_mask = 0;
    const Bytes expected = decode(settings, data);
    for (std::uint32_t mask : kMasks) {
      settings.kernel_mask = mask;
      EXPECT_TRUE(decode(settings, data) == expected) << mask;
    }
  }
}

}  // namespace
}  // namespace corvin::studio

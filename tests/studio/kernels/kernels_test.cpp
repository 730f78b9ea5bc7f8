// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Every build of every kernel returns the bits of the plain one, and the plain ones what their
// definitions say.

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>
#include <numeric>
#include <tuple>

#include "studio/kernels/path_search.h"
#include "studio/kernels/word_loop.h"
#include "studio/plan/decode_plan.h"
#include "tests/support/kernel_builds.h"
#include "tests/support/studio_streams.h"

namespace corvin::studio {
namespace {

template <typename Variant>
void expect_each_build_where_its_mask_allows() {
  for (const Variant* build : builds<Variant>()) {
    if ((build->set.feature & ~detected_features()) != 0) continue;
    EXPECT_EQ(&best_build<Variant>(build->set.mask()), build) << build->set.name;
  }
  EXPECT_EQ(best_build<Variant>(0).set.feature, kPortable.feature);
  if (detected_features() != 0) {
    EXPECT_GT(builds<Variant>().size(), 1u) << "the processor's folder is not listed";
  }
}

TEST(Kernels, TheMaskedBuildIsTheOneThatRuns) {
  expect_each_build_where_its_mask_allows<BitFirVariant>();
  expect_each_build_where_its_mask_allows<FoldFirVariant>();
  expect_each_build_where_its_mask_allows<SpectralVariant>();
  expect_each_build_where_its_mask_allows<QuantiseVariant>();
  expect_each_build_where_its_mask_allows<InterpolateVariant>();
  expect_each_build_where_its_mask_allows<WordLoopVariant>();
  expect_each_build_where_its_mask_allows<PathSearchVariant>();
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
            ASSERT_EQ(out[i], sum) << kernels.bit_fir->set.name << " by " << decimation << ", row "
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
        // One number beyond the results guards them.
        const auto result = [&](const Kernels& kernels) {
          AlignedArray<double> out(count * columns + 1);
          out[count * columns] = 99.0;
          kernels.fold_fir->run(rows.data(), columns, half.data(), taps, kDecimation, out.data(),
                                count);
          return std::vector<double>(out.data(), out.data() + out.size());
        };
        const std::vector<double> expected = result(builds[0]);
        long double sum = 0;
        for (std::size_t t = 0; t < taps; ++t) {
          sum += static_cast<long double>(half[std::min(t, taps - 1 - t)]) * rows[t * columns];
        }
        // Each of the taps' roundings is at most 2^-53 of sums below taps x 2^30.
        EXPECT_NEAR(expected[0], static_cast<double>(sum),
                    std::ldexp(static_cast<double>(taps * taps), 30 - 52));
        EXPECT_EQ(expected.back(), 99.0);
        for (const Kernels& kernels : builds) {
          EXPECT_EQ(result(kernels), expected)
              << kernels.fold_fir->set.name << ", taps " << taps << ", columns " << columns;
        }
      }
    }
  }
}

TEST(Kernels, TransformsAreTheDefiningSums) {
  Random random(6);
  for (std::size_t points : {14u, 16u, 105u, 882u, 2048u, 2352u, 2560u, 4096u, 4704u, 5120u, 8192u,
                             9408u, 10240u, 18816u}) {
    const FftPlan plan = make_fft_plan(points);
    std::vector<double> data(2 * points);
    for (double& value : data) value = random() / 2147483648.0 - 0.5;
    std::vector<double> bins = data;
    spectral_portable.to_bins(plan, bins.data());
    for (std::size_t bin = 0; bin < points; bin += points / 7) {
      using Complex = std::complex<long double>;
      const long double angle = -2 * std::numbers::pi_v<long double> / static_cast<double>(points);
      const std::size_t place = 2 * plan.position(bin);
      Complex rest(-bins[place], -bins[place + 1]);
      for (std::size_t i = 0; i < points; ++i) {
        rest += Complex(data[2 * i], data[2 * i + 1]) *
                std::polar(1.0L, angle * static_cast<double>(i * bin % points));
      }
      // A few roundings of 1e-16 in each of the passes, growing with the root of the points.
      EXPECT_LT(std::abs(rest), 3e-15 * std::sqrt(static_cast<double>(points))) << points;
    }
    // Back through the other direction, with the parts exchanged.
    for (std::size_t i = 0; i < points; ++i) std::swap(bins[2 * i], bins[2 * i + 1]);
    spectral_portable.from_bins(plan, bins.data());
    for (std::size_t i = 0; i < points; ++i) {
      ASSERT_NEAR(bins[2 * i + 1] / static_cast<double>(points), data[2 * i], 1e-14) << points;
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
        const auto result = [&](const Kernels& kernels) {
          std::vector<std::int32_t> out(length + 1, 77);
          QuantiseTally tally;
          kernels.quantise->run(in.data() + 1, length, scale, 0x12345678, 0xfffffff0u, out.data(),
                                tally);
          return std::tuple(out, tally.peak, tally.clips);
        };
        const auto expected = result(builds[0]);
        const auto& [out, peak, clips] = expected;
        EXPECT_EQ(out.back(), 77);
        for (std::size_t i = 0; i < length && !dither; ++i) {
          ASSERT_EQ(out[i], std::clamp(std::nearbyint(in[i + 1] * full), -full, full - 1)) << i;
        }
        for (const Kernels& kernels : builds) {
          EXPECT_EQ(result(kernels), expected) << kernels.quantise->set.name << ' ' << length;
        }
      }
    }
  }
}

}  // namespace
}  // namespace corvin::studio

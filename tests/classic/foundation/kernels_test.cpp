// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "classic/foundation/kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <vector>

#include "classic/foundation/aligned_storage.h"

namespace {

struct Build {
  const char* name;
  Dot8Plain plain[2];
  Dot8Phase phase;
  Dot8Planned planned;
  bool wide;  ///< takes counts up to a multiple of 4
};

const Build kBuilds[] = {
    {"portable", {dot8_normal0, dot8_normal}, dot8_normal2, dot8_normal3, false},
#ifdef CORVIN_HAS_SSE_KERNELS
    {"sse", {dot8_sse0, dot8_sse}, dot8_sse2, dot8_sse3a, true},
    {"sse3", {dot8_sse30, dot8_sse3}, dot8_sse32, dot8_sse33, true},
#endif
};

AlignedFloats RandomFloats(std::size_t count, unsigned seed) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<float> value(-1, 1);
  AlignedFloats out = MakeAlignedFloats(count);
  for (std::size_t i = 0; i < count; ++i) out[i] = value(random);
  return out;
}

/// Sum in double, and a bound for any order of single-precision additions: n u times the absolute
/// sum for the additions and u for the products.
struct Exact {
  double sum = 0;
  double bound = 0;

  Exact(const float* a, const float* b, int n) {
    double absolute = 0;
    for (int i = 0; i < n; ++i) {
      sum += static_cast<double>(a[i]) * b[i];
      absolute += std::abs(static_cast<double>(a[i]) * b[i]);
    }
    bound = (n + 1) * std::ldexp(absolute, -24);
  }
};

TEST(Kernels, PlainFormAtEveryLengthAndOffset) {
  for (const Build& build : kBuilds) {
    for (int n : {0, 1, 2, 3, 4, 5, 7, 8, 15, 16, 17, 31, 32, 33, 63, 64, 65, 480, 999}) {
      const AlignedFloats a = RandomFloats(1024, static_cast<unsigned>(n));
      AlignedFloats b = RandomFloats(1024, static_cast<unsigned>(n) + 1000);
      for (int i = n; i < 1024; ++i) b[static_cast<std::size_t>(i)] = 0;
      for (int offset = 0; offset < 4; ++offset) {
        const Exact exact(a.get() + offset, b.get(), n);
        for (const Dot8Plain plain : build.plain) {
          float out = 99;
          plain(&out, a.get() + offset, b.get(), n);
          EXPECT_NEAR(out, exact.sum, exact.bound) << build.name << " n " << n;
        }
      }
    }
  }
}

// Hosts compare bytes: the order of additions is part of each build.
TEST(Kernels, BuildsAddInTheirOwnOrder) {
  const float a[] = {1.0f, 16777216.0f, 1.0f, -16777216.0f, 1.0f};
  const float ones[] = {1, 1, 1, 1, 1};
  float out;
  dot8_normal0(&out, a, ones, 5);
  // 1 first; then p3 + ((p1 + p2) + (p0 + 1)) with p = {2^24, 1, -2^24, 1}. One by one it would
  // be 1.
  EXPECT_EQ(out, 2.0f);
#ifdef CORVIN_HAS_SSE_KERNELS
  // Lane sums of 2^24, 1, -2^24 and 1 are reduced as (a + c) + (b + d) and as (a + b) + (c + d).
  const AlignedFloats lanes = MakeAlignedFloats(4), units = MakeAlignedFloats(4);
  std::copy_n(a + 1, 4, lanes.get());
  std::copy_n(ones, 4, units.get());
  dot8_sse0(&out, lanes.get(), units.get(), 4);
  EXPECT_EQ(out, 2.0f);
  dot8_sse30(&out, lanes.get(), units.get(), 4);
  EXPECT_EQ(out, 1.0f);
#endif
}

TEST(Kernels, PhaseForm) {
  constexpr int kPhases = 5, kTaps = 24;
  std::vector<AlignedFloats> rows;
  float* hist[kPhases];
  for (unsigned j = 0; j < kPhases; ++j) {
    rows.push_back(RandomFloats(kTaps + 8, j));
    hist[j] = rows.back().get();
  }
  const AlignedFloats taps = RandomFloats(kTaps + 8, 99);
  for (const Build& build : kBuilds) {
    for (int step : {1, 2, 3, 7}) {
      for (int pos : {0, 1, 2, 5, -3}) {
        std::vector<double> expected;
        std::vector<double> bound;
        for (int j = 0; j < kPhases; ++j) {
          if ((pos + j) % step != 0) continue;
          // The portable build reads row 0 for every phase.
          const Exact exact(hist[build.wide ? j : 0], taps.get() + (j > 0 ? 1 : 0), kTaps);
          expected.push_back(exact.sum);
          bound.push_back(exact.bound);
        }
        float out[kPhases + 1];
        std::fill(std::begin(out), std::end(out), 99.0f);
        const int count =
            build.phase(out, taps.get(), hist, kPhases, kPhases * kTaps + 2, pos, step);
        ASSERT_EQ(count, static_cast<int>(expected.size())) << build.name << pos << step;
        for (std::size_t i = 0; i < expected.size(); ++i)
          EXPECT_NEAR(out[i], expected[i], bound[i]) << build.name;
        EXPECT_EQ(out[count], 99.0f);
      }
    }
    float out[kPhases] = {9, 9, 9, 9, 9};
    EXPECT_EQ(build.phase(out, taps.get(), hist, kPhases, 4, 0, 1), kPhases);
    EXPECT_EQ(std::accumulate(out, out + kPhases, 0.0f), 0.0f);
    EXPECT_EQ(build.phase(out, taps.get(), hist, 0, 4, 0, 1), 0);
    EXPECT_EQ(build.phase(out, taps.get(), hist, 1, 4, 0, 0), 0);
  }
}

TEST(Kernels, PlannedForm) {
  constexpr int kTaps = 40;
  AlignedFloats row0 = RandomFloats(kTaps, 1), row1 = RandomFloats(kTaps, 2);
  float* hist[] = {row0.get(), row1.get()};
  const AlignedFloats work = RandomFloats(200, 3);
  DOT8Dec_DATA plan[] = {{0, 0}, {0, 7}, {1, 7}, {1, 150}, {0, 149}};
  for (const Build& build : kBuilds) {
    float out[6] = {0, 0, 0, 0, 0, 99};
    ASSERT_EQ(build.planned(out, work.get(), hist, 2, 2 * kTaps + 1, plan, 5), 5);
    for (std::size_t i = 0; i < 5; ++i) {
      const Exact exact(hist[plan[i].hist], work.get() + plan[i].tap, kTaps);
      EXPECT_NEAR(out[i], exact.sum, exact.bound) << build.name << i;
    }
    EXPECT_EQ(out[5], 99.0f);
    EXPECT_EQ(build.planned(out, work.get(), hist, 2, 1, plan, 5), 5);
    EXPECT_EQ(std::accumulate(out, out + 5, 0.0f), 0.0f);
  }
}

TEST(Kernels, SelectionFollowsTheProcessor) {
  SelectKernels();
#ifdef CORVIN_HAS_SSE_KERNELS
  EXPECT_EQ(g_bSSE, __builtin_cpu_supports("sse") ? 1 : 0);
  EXPECT_EQ(g_bSSE3, __builtin_cpu_supports("sse3") ? 1 : 0);
  const Build& expected = kBuilds[g_bSSE3 ? 2 : g_bSSE ? 1 : 0];
#else
  const Build& expected = kBuilds[0];
#endif
  EXPECT_EQ(dot8_0, expected.plain[0]);
  EXPECT_EQ(dot8, expected.plain[1]);
  EXPECT_EQ(dot8_2, expected.phase);
  EXPECT_EQ(dot8_3, expected.planned);
}

}  // namespace

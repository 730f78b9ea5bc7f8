// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Cycles without hardware counters, which virtual machines hide.

#ifndef CORVIN_BENCH_CORE_CLOCK_H_
#define CORVIN_BENCH_CORE_CLOCK_H_

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <vector>

namespace corvin::bench {

inline double seconds_since(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// The core's clock in Hz: a chain of multiplications takes three cycles each on every processor
/// that has the vector builds.
inline double core_clock() {
  constexpr int kCount = 300000;
  std::uint64_t value = 3;
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < kCount; ++i) {
    value *= 0x9e3779b97f4a7c15u;
    benchmark::DoNotOptimize(value);
  }
  return 3.0 * kCount / seconds_since(start);
}

/// The first decile of costs: neighbours on the machine only ever add to them.
inline double first_decile(std::vector<double>& costs) {
  const auto decile = costs.begin() + static_cast<std::ptrdiff_t>(costs.size() / 10);
  std::nth_element(costs.begin(), decile, costs.end());
  return *decile;
}

}  // namespace corvin::bench

#endif  // CORVIN_BENCH_CORE_CLOCK_H_

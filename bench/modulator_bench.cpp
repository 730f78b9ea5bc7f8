// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The studio engine's modulator alone: each grade with each build of its kernels, on one core.

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

#include "bench/core_clock.h"
#include "bench/each_set.h"
#include "studio/modulator/modulator.h"

namespace {

using namespace corvin::studio;

constexpr double kRate = 2822400;  // DSD64: multiples of real time are by this rate

// Slices of a stereo stream, such as an encoder hands over. `cycles` is per DSD sample and channel.
void Modulate(benchmark::State& state, std::uint32_t mask) {
  ModulatorConfig config;
  config.grade = static_cast<ModulatorGrade>(state.range(0));
  config.oversampling = static_cast<int>(state.range(1));
  config.wide_band = state.range(2) != 0;
  config.kernel_mask = mask;
  Modulator modulator(config);
  constexpr std::size_t kSamples = 2048;
  std::vector<double> in[2];
  std::vector<std::uint8_t> out[2];
  for (int c = 0; c < 2; ++c) {
    for (std::size_t i = 0; i < kSamples; ++i) {
      in[c].push_back(0.5 * std::sin(2 * std::numbers::pi * (3 + c) * static_cast<double>(i) /
                                     static_cast<double>(kSamples)));
    }
    out[c].resize(kSamples + Modulator::kLookAhead);
  }
  const double* const from[2] = {in[0].data(), in[1].data()};
  std::uint8_t* const to[2] = {out[0].data(), out[1].data()};
  const double bits = 8.0 * kSamples;
  std::vector<double> costs;
  for (auto _ : state) {
    const double before = corvin::bench::core_clock();
    const auto start = std::chrono::steady_clock::now();
    benchmark::DoNotOptimize(modulator.modulate(from, kSamples, to));
    const double seconds = corvin::bench::seconds_since(start);
    state.SetIterationTime(seconds);
    costs.push_back(seconds * std::max(before, corvin::bench::core_clock()) / (2 * bits));
  }
  state.counters["cycles"] = corvin::bench::first_decile(costs);
  state.counters["x_real_time"] =
      benchmark::Counter(bits / kRate, benchmark::Counter::kIsIterationInvariantRate);
}

void grades(benchmark::internal::Benchmark* bench) {
  for (std::int64_t wide : {0, 1}) {
    for (std::int64_t grade : {0, 1, 2}) bench->Args({grade, 64, wide});
    bench->Args({0, 256, wide});
    bench->Args({0, 512, wide});
  }
  bench->UseManualTime()->ArgNames({"grade", "dsd", "wide"})->MinTime(0.05);
}

[[maybe_unused]] const std::size_t kModulate =
    corvin::bench::each_set("Modulate", Modulate, grades);

}  // namespace

BENCHMARK_MAIN();

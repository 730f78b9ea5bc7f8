// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The compact converter: one channel, alone and out of a stereo stream. Cycles are those of the
// time stamp counter, at its own constant rate; machines without one report bytes per second only.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <vector>

#include "corvin.h"

#if defined(__x86_64__) || defined(__i386__)
#include <x86intrin.h>
#endif

namespace {

std::uint64_t Cycles() {
#if defined(__x86_64__) || defined(__i386__)
  return __rdtsc();
#else
  return 0;
#endif
}

void Translate(benchmark::State& state) {
  constexpr std::size_t kBytes = 4096;
  const auto stride = static_cast<std::ptrdiff_t>(state.range(0));
  const int lsbfirst = static_cast<int>(state.range(1));
  std::mt19937 random(1);
  std::vector<std::uint8_t> in(kBytes * static_cast<std::size_t>(stride));
  for (auto& byte : in) byte = static_cast<std::uint8_t>(random());
  std::vector<float> out(in.size());
  const std::unique_ptr<dsd2pcm_state, decltype(&dsd2pcm_destroy)> converter(dsd2pcm_init(),
                                                                             dsd2pcm_destroy);
  std::uint64_t fastest = UINT64_MAX;
  for (auto _ : state) {
    const std::uint64_t start = Cycles();
    dsd2pcm_translate(converter.get(), kBytes, in.data(), stride, lsbfirst, out.data(), stride);
    benchmark::ClobberMemory();
    fastest = std::min(fastest, Cycles() - start);
  }
  const auto bytes = static_cast<double>(state.iterations()) * kBytes;
  if (fastest > 0) {
    state.counters["cycles_per_byte"] = static_cast<double>(fastest) / kBytes;
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
  // A channel of DSD64 has 352800 bytes per second.
  state.counters["x_real_time"] = benchmark::Counter(bytes / 352800, benchmark::Counter::kIsRate);
}

BENCHMARK(Translate)->ArgNames({"stride", "lsbfirst"})->Args({1, 0})->Args({2, 0})->Args({1, 1});

}  // namespace

BENCHMARK_MAIN();

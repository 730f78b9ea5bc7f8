// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The whole classic decode, memory to memory, as a multiple of real time; once on the processors
// that there are and once on one of them.

#include <benchmark/benchmark.h>

#include <vector>

#include "bench/processors.h"
#include "corvin.h"

namespace {

constexpr int kSeconds = 20;

void Decode(benchmark::State& state, int dsd_rate, int pcm_rate) {
  const int bytes = dsd_rate / 8 * kSeconds;
  std::vector<char> dsd(2 * static_cast<std::size_t>(bytes));
  unsigned noise = 1;
  for (char& byte : dsd) byte = static_cast<char>((noise = noise * 1664525u + 1013904223u) >> 24);
  std::vector<char> pcm(static_cast<std::size_t>(pcm_rate) * kSeconds * 2 * 3);
  const ProcessorLimit limit(static_cast<int>(state.range(0)));
  for (auto _ : state) RTBufDSDtoPCM(dsd.data(), bytes, dsd_rate, pcm.data(), pcm_rate, 24);
  state.counters["x_real_time"] =
      benchmark::Counter(kSeconds, benchmark::Counter::kIsIterationInvariantRate);
}

#define CORVIN_DECODE_BENCH(dsd, pcm)                 \
  BENCHMARK_CAPTURE(Decode, dsd##_to_##pcm, dsd, pcm) \
      ->Arg(1)                                        \
      ->Arg(2)                                        \
      ->ArgName("processors")                         \
      ->UseRealTime()                                 \
      ->MeasureProcessCPUTime()                       \
      ->Unit(benchmark::kMillisecond)

CORVIN_DECODE_BENCH(2822400, 44100);
CORVIN_DECODE_BENCH(2822400, 88200);
CORVIN_DECODE_BENCH(2822400, 352800);
CORVIN_DECODE_BENCH(2822400, 48000);
CORVIN_DECODE_BENCH(11289600, 88200);

}  // namespace

BENCHMARK_MAIN();

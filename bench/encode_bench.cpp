// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The whole classic encode, memory to memory, as a multiple of real time, on one processor and on
// two; and the modulator alone per sample.

#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "bench/processors.h"
#include "classic/encode/modulator.h"
#include "corvin.h"

namespace {

constexpr int kSeconds = 10;

void Encode(benchmark::State& state, int pcm_rate, int dsd_rate) {
  const int frames = pcm_rate * kSeconds;
  std::vector<char> pcm(static_cast<std::size_t>(frames) * 6);
  unsigned noise = 1;
  for (char& byte : pcm) byte = static_cast<char>((noise = noise * 1664525u + 1013904223u) >> 26);
  std::vector<char> dsd(static_cast<std::size_t>(dsd_rate) / 8 * kSeconds * 2);
  const ProcessorLimit limit(static_cast<int>(state.range(0)));
  for (auto _ : state)
    RTBufPCMtoDSD(pcm.data(), static_cast<int>(pcm.size()), pcm_rate, 24, dsd.data(),
                  static_cast<unsigned>(dsd_rate), frames);
  state.counters["x_real_time"] =
      benchmark::Counter(kSeconds, benchmark::Counter::kIsIterationInvariantRate);
}

void ModulatorAlone(benchmark::State& state) {
  std::vector<float> in(1 << 16);
  for (std::size_t i = 0; i < in.size(); ++i)
    in[i] = 0.4f * std::sin(0.002f * static_cast<float>(i));
  std::vector<char> out(in.size() / 8);
  const ModulatorCoefficients coefficients = DesignModulator(512);
  double modulator[8] = {};
  for (auto _ : state) {
    Modulate(in.data(), static_cast<int>(out.size()), coefficients, modulator, false, 1,
             out.data());
    benchmark::ClobberMemory();
  }
  state.counters["samples/s"] = benchmark::Counter(static_cast<double>(in.size()),
                                                   benchmark::Counter::kIsIterationInvariantRate);
}

BENCHMARK(ModulatorAlone);

#define CORVIN_ENCODE_BENCH(pcm, dsd)                 \
  BENCHMARK_CAPTURE(Encode, pcm##_to_##dsd, pcm, dsd) \
      ->Arg(1)                                        \
      ->Arg(2)                                        \
      ->ArgName("processors")                         \
      ->UseRealTime()                                 \
      ->MeasureProcessCPUTime()                       \
      ->Unit(benchmark::kMillisecond)

CORVIN_ENCODE_BENCH(44100, 2822400);
CORVIN_ENCODE_BENCH(96000, 5644800);
CORVIN_ENCODE_BENCH(44100, 11289600);

}  // namespace

BENCHMARK_MAIN();

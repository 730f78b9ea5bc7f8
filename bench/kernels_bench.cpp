// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The classic engine's dot products and filter design on their own.

#include <benchmark/benchmark.h>

#include "classic/foundation/aligned_storage.h"
#include "classic/foundation/kernels.h"
#include "classic/foundation/lowpass_design.h"

namespace {

void Plain(benchmark::State& state, Dot8Plain kernel) {
  const auto taps = static_cast<int>(state.range(0));
  const AlignedFloats a = MakeAlignedFloats(static_cast<std::size_t>(taps) + 8);
  const AlignedFloats b = MakeAlignedFloats(static_cast<std::size_t>(taps) + 8);
  for (auto _ : state) {
    float out;
    kernel(&out, a.get() + 1, b.get(), taps);
    benchmark::DoNotOptimize(out);
  }
  state.counters["taps/s"] =
      benchmark::Counter(static_cast<double>(taps), benchmark::Counter::kIsIterationInvariantRate);
}

/// One block of 2822400 to 88200: 128 outputs of 1488 taps, 32 samples apart.
void Planned(benchmark::State& state, Dot8Planned kernel) {
  constexpr int kTaps = 1488, kOutputs = 128, kStep = 32;
  AlignedFloats set = MakeAlignedFloats(kTaps);
  const AlignedFloats work = MakeAlignedFloats(kTaps + kOutputs * kStep);
  float* sets[] = {set.get()};
  DOT8Dec_DATA plan[kOutputs];
  for (int i = 0; i < kOutputs; ++i) plan[i] = {0, i * kStep};
  float out[kOutputs];
  for (auto _ : state) {
    kernel(out, work.get(), sets, 1, kTaps, plan, kOutputs);
    benchmark::ClobberMemory();
  }
  state.counters["taps/s"] =
      benchmark::Counter(kTaps * kOutputs, benchmark::Counter::kIsIterationInvariantRate);
}

void Design(benchmark::State& state, int budget, int factor, int dsd_rate, int pcm_rate) {
  for (auto _ : state) {
    CFIRFilter filter(budget);
    benchmark::DoNotOptimize(filter.Init(dsd_rate, static_cast<double>(factor) * dsd_rate,
                                         pcm_rate * 0.5, factor * 8, 90.0));
  }
}

BENCHMARK_CAPTURE(Plain, portable, dot8_normal0)->Arg(480)->Arg(1488)->Arg(12000);
BENCHMARK_CAPTURE(Planned, portable, dot8_normal3);
#ifdef CORVIN_HAS_SSE_KERNELS
BENCHMARK_CAPTURE(Plain, sse, dot8_sse0)->Arg(480)->Arg(1488)->Arg(12000);
BENCHMARK_CAPTURE(Plain, sse3, dot8_sse30)->Arg(480)->Arg(1488)->Arg(12000);
BENCHMARK_CAPTURE(Planned, sse, dot8_sse3a);
BENCHMARK_CAPTURE(Planned, sse3, dot8_sse33);
#endif
BENCHMARK_CAPTURE(Design, 2822400_to_44100, 65536, 1, 2822400, 44100)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Design, 2822400_to_88200, 65536, 1, 2822400, 88200)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Design, 3072000_to_705600, 131072, 147, 3072000, 705600)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();

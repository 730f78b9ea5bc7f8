// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The studio engine's encoder: up-sampling alone per build of the kernels, plan and whole streams.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <vector>

#include "bench/core_clock.h"
#include "bench/each_set.h"
#include "corvin.hpp"
#include "studio/encode/encode_chain.h"
#include "studio/encode/up_sampler.h"

namespace {

using namespace corvin::studio;

// The stages over one batch. `cycles/sample` is the first decile of all batches, per one-bit sample
// of one channel.
void UpSample(benchmark::State& state, std::uint32_t mask) {
  const EncodePlan plan = make_encode_chain({static_cast<std::uint32_t>(state.range(0)),
                                             static_cast<std::uint32_t>(state.range(1))},
                                            ModulatorGrade::kStandard)
                              ->plan;
  UpSampler sampler(plan, choose_kernels(mask));
  const std::size_t items = sampler.items_at_once();
  std::vector<double> frames(items * item_frames(plan), 0.1);
  std::vector<double> samples(items * item_samples(plan));
  std::vector<const double*> in;
  std::vector<double*> out;
  for (std::size_t i = 0; i < items; ++i) {
    in.push_back(&frames[i * item_frames(plan)]);
    out.push_back(&samples[i * item_samples(plan)]);
  }
  const double bits = 8.0 * static_cast<double>(samples.size());
  std::vector<double> costs;
  for (auto _ : state) {
    const double before = corvin::bench::core_clock();
    const auto start = std::chrono::steady_clock::now();
    sampler.run(in.data(), out.data(), items);
    const double seconds = corvin::bench::seconds_since(start);
    state.SetIterationTime(seconds);
    costs.push_back(seconds * std::max(before, corvin::bench::core_clock()) / bits);
  }
  state.counters["cycles/sample"] = corvin::bench::first_decile(costs);
}

void Chain(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(make_encode_chain(
        {static_cast<std::uint32_t>(state.range(0)), static_cast<std::uint32_t>(state.range(1))},
        ModulatorGrade::kStandard));
  }
}

// Seconds of 24-bit sound at 44.1 kHz, memory to memory in blocks of 4096.
void Stream(benchmark::State& state, std::uint32_t mask) {
  corvin::EncoderSettings settings;
  settings.modulator = static_cast<std::uint32_t>(state.range(0));
  settings.dsd_rate = static_cast<std::uint32_t>(state.range(1));
  settings.channels = static_cast<std::uint32_t>(state.range(2));
  settings.threads = static_cast<std::uint32_t>(state.range(3));
  settings.block_bytes = 4096;
  settings.kernel_mask = mask;
  corvin::Encoder encoder(settings);
  const std::size_t seconds = settings.modulator != CORVIN_MODULATOR_STANDARD ? 1 : 5;
  const std::size_t total = seconds * settings.pcm_rate;
  std::vector<std::uint8_t> sound(total * settings.channels * 3);
  for (std::size_t i = 0; i < sound.size() / 3; ++i) {
    const auto frame = static_cast<double>(i / settings.channels);
    const auto value = static_cast<std::int32_t>(3e6 * std::sin(frame * (i % 2 == 0 ? 0.1 : 0.11)));
    for (unsigned b = 0; b < 3; ++b) {
      sound[3 * i + b] = static_cast<std::uint8_t>(static_cast<std::uint32_t>(value) >> 8 * b);
    }
  }
  std::vector<std::uint8_t> out(1 << 20);
  for (auto _ : state) {
    std::size_t pushed = 0;
    bool finished = false;
    for (;;) {
      if (pushed < total) {
        pushed += encoder.push(&sound[pushed * settings.channels * 3], total - pushed);
      } else if (!finished) {
        encoder.finish();
        finished = true;
      }
      if (encoder.pull(std::span(out)) == 0 && finished) break;
    }
    encoder.reset();
  }
  state.counters["x_real_time"] = benchmark::Counter(static_cast<double>(seconds),
                                                     benchmark::Counter::kIsIterationInvariantRate);
}

void pairs(benchmark::internal::Benchmark* bench) {
  constexpr std::int64_t kPairs[][2] = {{44100, 2822400},  {48000, 2822400},  {44100, 3072000},
                                        {88200, 2822400},  {96000, 2822400},  {192000, 2822400},
                                        {352800, 2822400}, {705600, 2822400}, {44100, 5644800},
                                        {44100, 11289600}, {44100, 22579200}};
  for (const auto& pair : kPairs) bench->Args({pair[0], pair[1]});
  bench->UseManualTime()->ArgNames({"pcm", "dsd"})->MinTime(0.1);
}

void streams(benchmark::internal::Benchmark* bench) {
  for (std::int64_t grade : {0, 1, 2}) {
    for (std::int64_t threads : {0, 1, 2}) bench->Args({grade, 2822400, 2, threads});
  }
  for (std::int64_t threads : {0, 2}) {
    bench->Args({0, 2822400, 6, threads});
    bench->Args({0, 11289600, 2, threads});
  }
  bench->UseRealTime()->MeasureProcessCPUTime()->MinTime(0.3);
  bench->ArgNames({"modulator", "dsd", "channels", "threads"})->Unit(benchmark::kMillisecond);
}

[[maybe_unused]] const std::size_t kUpSample = corvin::bench::each_set("UpSample", UpSample, pairs);
BENCHMARK(Chain)
    ->Args({44100, 2822400})
    ->Args({48000, 22579200})
    ->ArgNames({"pcm", "dsd"})
    ->Unit(benchmark::kMillisecond);
[[maybe_unused]] const std::size_t kStream =
    corvin::bench::each_vector_set("Stream", Stream, streams);

}  // namespace

BENCHMARK_MAIN();

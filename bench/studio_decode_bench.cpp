// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The studio engine's decoder: filtering alone per build of the kernels, plan and whole streams.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <vector>

#include "bench/core_clock.h"
#include "bench/each_set.h"
#include "corvin.hpp"
#include "studio/decode/span_filter.h"

namespace {

using namespace corvin::studio;

std::vector<std::uint8_t> random_bytes(std::size_t count) {
  std::vector<std::uint8_t> bytes(count);
  std::uint32_t state = 1;
  for (std::uint8_t& byte : bytes) {
    state = state * 1664525u + 1013904223u;
    byte = static_cast<std::uint8_t>(state >> 24);
  }
  return bytes;
}

// The stages over one batch. `cycles/byte` is the least of all batches, per DSD byte of one
// channel.
void Filter(benchmark::State& state, std::uint32_t mask) {
  DecodePlanConfig config;
  config.dsd_rate = static_cast<std::uint32_t>(state.range(0));
  config.pcm_rate = static_cast<std::uint32_t>(state.range(1));
  const Kernels kernels = choose_kernels(mask);
  config.row_stride_12 = kernels.bit_fir->row_stride_12;
  const DecodePlan plan = *make_decode_plan(config);
  SpanFilter filter(plan, kernels);
  const std::size_t items = filter.items_at_once();
  const std::vector<std::uint8_t> bytes = random_bytes(items * item_bytes(plan));
  std::vector<double> samples(items * item_frames(plan));
  std::vector<const std::uint8_t*> in;
  std::vector<double*> out;
  for (std::size_t i = 0; i < items; ++i) {
    in.push_back(&bytes[i * item_bytes(plan)]);
    out.push_back(&samples[i * item_frames(plan)]);
  }
  const double new_bytes = 2.0 * static_cast<double>(items * plan.hop_bytes);
  std::vector<double> costs;
  for (auto _ : state) {
    const double before = corvin::bench::core_clock();
    const auto start = std::chrono::steady_clock::now();
    filter.run(in.data(), out.data(), items);
    const double seconds = corvin::bench::seconds_since(start);
    state.SetIterationTime(seconds);
    costs.push_back(seconds * std::max(before, corvin::bench::core_clock()) / new_bytes);
  }
  state.counters["cycles/byte"] = corvin::bench::first_decile(costs);
  state.counters["x_real_time"] = benchmark::Counter(8 * new_bytes / config.dsd_rate,
                                                     benchmark::Counter::kIsIterationInvariantRate);
}

void Plan(benchmark::State& state) {
  DecodePlanConfig config;
  config.dsd_rate = static_cast<std::uint32_t>(state.range(0));
  config.pcm_rate = static_cast<std::uint32_t>(state.range(1));
  config.phase = state.range(2) != 0 ? Phase::kMinimum : Phase::kLinear;
  for (auto _ : state) benchmark::DoNotOptimize(make_decode_plan(config));
}

// Ten seconds of stereo in blocks of 4096, memory to memory, with the dither that is usual for the
// format.
void Stream(benchmark::State& state, std::uint32_t mask) {
  corvin::DecoderSettings settings;
  settings.pcm_rate = static_cast<std::uint32_t>(state.range(0));
  settings.format = static_cast<std::uint32_t>(state.range(1));
  settings.dither = settings.format == CORVIN_S16 ? CORVIN_DITHER_SHAPED : CORVIN_DITHER_TPDF;
  settings.threads = static_cast<std::uint32_t>(state.range(2));
  settings.block_bytes = 4096;
  settings.kernel_mask = mask;
  corvin::Decoder decoder(settings);
  const std::vector<std::uint8_t> bytes = random_bytes(1 << 20);
  const std::size_t total = 10 * settings.dsd_rate / 8 * 2;
  std::vector<std::uint8_t> out(1 << 20);
  for (auto _ : state) {
    std::size_t pushed = 0;
    bool finished = false;
    for (;;) {
      if (pushed < total) {
        const std::size_t at = pushed % bytes.size();
        const std::size_t count = std::min(bytes.size() - at, total - pushed);
        pushed += decoder.push(std::span(bytes).subspan(at, count));
      } else if (!finished) {
        decoder.finish();
        finished = true;
      }
      if (decoder.pull(out.data(), 1 << 16) == 0 && finished) break;
    }
    decoder.reset();
  }
  state.counters["x_real_time"] =
      benchmark::Counter(10, benchmark::Counter::kIsIterationInvariantRate);
}

void pairs(benchmark::internal::Benchmark* bench) {
  constexpr std::int64_t kPairs[][2] = {{2822400, 44100},  {2822400, 88200},  {2822400, 176400},
                                        {2822400, 352800}, {2822400, 48000},  {2822400, 96000},
                                        {5644800, 44100},  {11289600, 44100}, {11289600, 352800},
                                        {22579200, 44100}, {3072000, 44100},  {3072000, 48000}};
  for (const auto& pair : kPairs) bench->Args({pair[0], pair[1]});
  bench->UseManualTime()->ArgNames({"dsd", "pcm"})->MinTime(0.1);
}

void streams(benchmark::internal::Benchmark* bench) {
  for (std::int64_t threads : {0, 1, 2}) {
    bench->Args({44100, CORVIN_S24, threads});
    bench->Args({352800, CORVIN_S24, threads});
    bench->Args({44100, CORVIN_S16, threads});
  }
  bench->UseRealTime()->MeasureProcessCPUTime()->ArgNames({"pcm", "format", "threads"});
  bench->Unit(benchmark::kMillisecond);
}

[[maybe_unused]] const std::size_t kFilter = corvin::bench::each_set("Filter", Filter, pairs);
BENCHMARK(Plan)
    ->Args({2822400, 44100, 0})
    ->Args({22579200, 48000, 0})
    ->Args({2822400, 44100, 1})
    ->ArgNames({"dsd", "pcm", "minimum"})
    ->Unit(benchmark::kMillisecond);
[[maybe_unused]] const std::size_t kStream =
    corvin::bench::each_vector_set("Stream", Stream, streams);

}  // namespace

BENCHMARK_MAIN();

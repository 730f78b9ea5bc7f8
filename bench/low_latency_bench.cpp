// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What low latency costs: processor time against the default's (`work`), and how much longer the
// longest call takes than their average (`burst`), on the caller's thread.

#include <benchmark/benchmark.h>
#include <time.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "bench/each_set.h"
#include "corvin.hpp"

namespace {

constexpr double kSeconds = 1;

double thread_seconds() {
  timespec time = {};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

// The least that each call of a stream took in several runs, so that nothing else counts.
template <typename Run>
std::vector<double> least_times(std::size_t calls, Run run) {
  constexpr int kRuns = 5;
  std::vector<double> least(calls, 1e9);
  for (int i = 0; i < kRuns; ++i) {
    run([&, before = 0.0](std::size_t call, bool starts) mutable {
      if (starts) {
        before = thread_seconds();
      } else {
        least[call] = std::min(least[call], thread_seconds() - before);
      }
    });
  }
  return least;
}

double sum(const std::vector<double>& values) {
  double result = 0;
  for (const double value : values) result += value;
  return result;
}

void count(benchmark::State& state, const std::vector<double> (&times)[2]) {
  const double longest = *std::max_element(times[1].begin(), times[1].end());
  state.counters["work"] = sum(times[1]) / sum(times[0]);
  state.counters["burst"] = longest * static_cast<double>(times[1].size()) / sum(times[1]);
}

// Calls of 64 frames' bytes.
void Decode(benchmark::State& state, std::uint32_t mask) {
  corvin::DecoderSettings settings;
  settings.dsd_rate = static_cast<std::uint32_t>(state.range(0));
  settings.pcm_rate = static_cast<std::uint32_t>(state.range(1));
  settings.channels = static_cast<std::uint32_t>(state.range(2));
  settings.kernel_mask = mask;
  const std::size_t bytes = std::size_t{8} * settings.dsd_rate / settings.pcm_rate;
  const auto calls = static_cast<std::size_t>(settings.dsd_rate / 8 * kSeconds) / bytes;
  std::vector<std::uint8_t> in(bytes * settings.channels);
  for (std::size_t i = 0; i < in.size(); ++i) in[i] = static_cast<std::uint8_t>(i * 167 + 13);
  std::vector<std::uint8_t> out(std::size_t{1} << 20);
  for (auto _ : state) {
    std::vector<double> times[2];
    for (const std::uint32_t low : {0u, 1u}) {
      settings.low_latency = low;
      times[low] = least_times(calls, [&](auto mark) {
        corvin::Decoder decoder(settings);
        for (std::size_t i = 0; i < calls; ++i) {
          mark(i, true);
          decoder.push(in);
          decoder.pull(out.data(), 1 << 14);
          mark(i, false);
        }
      });
    }
    count(state, times);
  }
}

void Encode(benchmark::State& state, std::uint32_t mask) {
  corvin::EncoderSettings settings;
  settings.modulator = static_cast<std::uint32_t>(state.range(0));
  settings.channels = static_cast<std::uint32_t>(state.range(1));
  settings.format = CORVIN_F32;
  settings.kernel_mask = mask;
  const auto frames = static_cast<std::size_t>(state.range(2));
  const auto calls = static_cast<std::size_t>(settings.pcm_rate * kSeconds) / frames;
  const std::size_t first = settings.pcm_rate / 20 / frames;  // before that nothing comes out
  std::vector<float> in(frames * settings.channels);
  for (std::size_t i = 0; i < in.size(); ++i) {
    in[i] = 0.3f * std::sin(0.1f * static_cast<float>(i));
  }
  std::vector<std::uint8_t> out(std::size_t{1} << 20);
  for (auto _ : state) {
    std::vector<double> times[2];
    for (const std::uint32_t low : {0u, 1u}) {
      settings.low_latency = low;
      times[low] = least_times(calls, [&](auto mark) {
        corvin::Encoder encoder(settings);
        for (std::size_t i = 0; i < first + calls; ++i) {
          if (i >= first) mark(i - first, true);
          encoder.push(in.data(), frames);
          encoder.pull(std::span(out));
          if (i >= first) mark(i - first, false);
        }
      });
    }
    count(state, times);
  }
}

void pairs(benchmark::internal::Benchmark* bench) {
  for (std::int64_t channels : {2, 1, 6}) {
    for (std::int64_t dsd : {2822400, 5644800, 11289600, 22579200, 3072000}) {
      bench->Args({dsd, 44100, channels});
    }
    for (std::int64_t pcm : {48000, 88200, 192000, 352800}) bench->Args({2822400, pcm, channels});
  }
  bench->ArgNames({"dsd", "pcm", "channels"})->Iterations(1)->Unit(benchmark::kMillisecond);
}

void grades(benchmark::internal::Benchmark* bench) {
  for (std::int64_t frames : {64, 192}) {
    for (std::int64_t channels : {2, 1}) {
      for (std::int64_t grade : {0, 1, 2}) bench->Args({grade, channels, frames});
    }
  }
  bench->ArgNames({"modulator", "channels", "frames"})->Iterations(1);
  bench->Unit(benchmark::kMillisecond);
}

[[maybe_unused]] const std::size_t kDecode =
    corvin::bench::each_vector_set("Decode", Decode, pairs);
[[maybe_unused]] const std::size_t kEncode =
    corvin::bench::each_vector_set("Encode", Encode, grades);

}  // namespace

BENCHMARK_MAIN();

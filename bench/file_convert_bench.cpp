// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Whole studio conversions from file to file: 150 seconds of stereo DSD64 to 24 bits, per build of
// the kernels and number of threads; and an hour of sound that no file holds, for the memory.

#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "bench/each_set.h"
#include "corvin.hpp"

namespace {

using namespace corvin::studio;

constexpr std::uint64_t kSeconds = 150;
constexpr std::uint64_t kRate = 2822400;

// Noise whose bytes have as many ones as zeros: no level, and no sample beyond full scale.
std::vector<std::uint8_t> quiet_noise(std::size_t count) {
  std::vector<std::uint8_t> bytes(count);
  std::uint32_t state = 1;
  for (std::uint8_t& byte : bytes) {
    do {
      state = state * 1664525u + 1013904223u;
      byte = static_cast<std::uint8_t>(state >> 24);
    } while (__builtin_popcount(byte) != 4);
  }
  return bytes;
}

/// Two files beside each other that go away at the end.
class Files {
 public:
  Files() {
    const char* folder = std::getenv("TMPDIR");
    base_ = std::string(folder != nullptr ? folder : "/tmp") + "/corvin_bench_" +
            std::to_string(getpid());
    corvin::Writer writer(source().c_str(), corvin::WriterSettings());
    const std::vector<std::uint8_t> noise = quiet_noise(2 * kRate / 8);
    for (std::uint64_t i = 0; i < kSeconds; ++i) writer.write(noise.data(), kRate / 8);
    writer.finish(kSeconds * kRate);
  }
  ~Files() {
    std::remove(source().c_str());
    std::remove(target().c_str());
  }
  std::string source() const { return base_ + ".dsf"; }
  std::string target() const { return base_ + ".pcm"; }

 private:
  std::string base_;
};

const Files& files() {
  static const Files all;
  return all;
}

int write_frames(void* file, const void* frames, std::size_t count) {
  return std::fwrite(frames, 6, count, static_cast<std::FILE*>(file)) == count ? 0 : 1;
}

double megabytes_used() {
  rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024;
}

void FileToFile(benchmark::State& state, std::uint32_t mask) {
  corvin::ConvertSettings settings;
  settings.pcm_rate = static_cast<std::uint32_t>(state.range(0));
  settings.threads = static_cast<std::uint32_t>(state.range(1));
  settings.kernel_mask = mask;
  const std::string source = files().source();
  const std::string target = files().target();
  for (auto _ : state) {
    corvin::File file(source.c_str());
    std::FILE* out = std::fopen(target.c_str(), "wb");
    std::setvbuf(out, nullptr, _IONBF, 0);
    const corvin_pcm_sink sink = {sizeof sink, out, nullptr, write_frames};
    corvin::convert_to_pcm(file, sink, settings);
    std::fclose(out);
  }
  state.counters["x_real_time"] =
      benchmark::Counter(kSeconds, benchmark::Counter::kIsIterationInvariantRate);
  state.counters["MiB"] = megabytes_used();
}

/// An hour in blocks of silence behind the header of a DSF file, made as it is read.
class Hour {
 public:
  Hour() {
    const auto little = [&](std::uint64_t value, int width) {
      for (int i = 0; i < width; ++i) header_.push_back(static_cast<std::uint8_t>(value >> 8 * i));
    };
    const auto id = [&](const char* text) {
      for (int i = 0; i < 4; ++i) header_.push_back(static_cast<std::uint8_t>(text[i]));
    };
    const std::uint64_t samples = 3600 * kRate;
    const std::uint64_t sound = (samples / 8 + 4095) / 4096 * 4096 * 2;
    size_ = 92 + sound;
    id("DSD "), little(28, 8), little(size_, 8), little(0, 8);
    id("fmt "), little(52, 8), little(1, 4), little(0, 4), little(2, 4), little(2, 4);
    little(kRate, 4), little(1, 4), little(samples, 8), little(4096, 4), little(0, 4);
    id("data"), little(12 + sound, 8);
  }

  corvin_stream callbacks() {
    corvin_stream stream = {};
    stream.size = sizeof stream;
    stream.user = this;
    stream.seek = [](void* user, std::uint64_t offset) {
      static_cast<Hour*>(user)->position_ = offset;
      return 0;
    };
    stream.length = [](void* user) {
      return static_cast<std::int64_t>(static_cast<Hour*>(user)->size_);
    };
    stream.read = [](void* user, void* to, std::size_t bytes) {
      auto& self = *static_cast<Hour*>(user);
      std::memset(to, 0x96, bytes);
      if (self.position_ < self.header_.size()) {
        const auto at = static_cast<std::size_t>(self.position_);
        std::memcpy(to, &self.header_[at], std::min(bytes, self.header_.size() - at));
      }
      self.position_ += bytes;
      return static_cast<std::int64_t>(bytes);
    };
    return stream;
  }

 private:
  std::vector<std::uint8_t> header_;
  std::uint64_t size_ = 0;
  std::uint64_t position_ = 0;
};

void HourOfMemory(benchmark::State& state) {
  corvin::ConvertSettings settings;
  settings.threads = static_cast<std::uint32_t>(state.range(0));
  for (auto _ : state) {
    Hour hour;
    corvin::File file(hour.callbacks());
    corvin_pcm_sink sink = {};
    sink.size = sizeof sink;
    sink.write = [](void*, const void*, std::size_t) { return 0; };
    corvin::convert_to_pcm(file, sink, settings);
  }
  state.counters["x_real_time"] =
      benchmark::Counter(3600, benchmark::Counter::kIsIterationInvariantRate);
  state.counters["MiB"] = megabytes_used();
}

void each(benchmark::internal::Benchmark* bench) {
  for (const std::int64_t rate : {44100, 352800}) {
    for (const std::int64_t threads : {0, 1, 2}) bench->Args({rate, threads});
  }
  bench->ArgNames({"pcm", "threads"})->UseRealTime()->MeasureProcessCPUTime();
  bench->Unit(benchmark::kMillisecond);
}

BENCHMARK(HourOfMemory)
    ->Arg(0)
    ->Arg(2)
    ->ArgName("threads")
    ->UseRealTime()
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);
[[maybe_unused]] const std::size_t kFileToFile =
    corvin::bench::each_vector_set("FileToFile", FileToFile, each);

}  // namespace

BENCHMARK_MAIN();

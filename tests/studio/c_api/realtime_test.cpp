// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The promise of decoders and encoders not to allocate on the caller's thread once they are made,
// and what comes of allocations and threads that fail while they, or a conversion, are made.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>

#include "tests/support/allocation_count.h"
#include "tests/support/memory_stream.h"
#include "tests/support/studio_streams.h"

namespace corvin::studio {
namespace {

TEST(RealTime, DecodersAllocateNothingAfterCreation) {
  DecoderSettings settings;
  settings.channels = 3;
  settings.block_bytes = 64;
  Decoder decoder(settings);
  const Bytes data(40000, kIdle);
  Bytes out(3 * 3 * 5000);
  const std::size_t before = allocations;
  for (int round = 0; round < 2; ++round) {
    for (int i = 0; i < 20; ++i) {
      decoder.push(data);
      decoder.pull(out.data(), 5000);
    }
    decoder.finish();
    while (decoder.pull(out.data(), 5000) > 0) continue;
    decoder.reset();
    decoder.seek(100000);
  }
  EXPECT_EQ(allocations, before);
}

TEST(RealTime, EncodersAllocateNothingAfterCreation) {
  for (std::uint32_t grade : {CORVIN_MODULATOR_STANDARD, CORVIN_MODULATOR_BEST}) {
    EncoderSettings settings;
    settings.channels = 3;
    settings.block_bytes = 64;
    settings.modulator = grade;
    settings.low_latency = 1;
    Encoder encoder(settings);
    const Bytes data(3 * 3 * 4000, 3);
    Bytes out(100000);
    const std::size_t before = allocations;
    for (int round = 0; round < 2; ++round) {
      encoder.push(data.data(), 4000);
      encoder.pull(out);
      encoder.finish();
      while (encoder.pull(out) > 0) continue;
      encoder.report();
      encoder.reset();
    }
    EXPECT_EQ(allocations, before);
  }
}

// Runs `work` with its first, second ... allocation failing, until it needs no more of them.
template <typename Work>
void fail_each_allocation(Work work) {
  for (std::size_t good = 0;; ++good) {
    last_allocation = allocations + good;
    const int status = work();
    last_allocation = SIZE_MAX;
    if (status == CORVIN_OK) {
      EXPECT_GT(good, 5u);
      return;
    }
    ASSERT_EQ(status, CORVIN_E_MEMORY) << good;
    ASSERT_LT(good, 1000u);
  }
}

TEST(OutOfMemory, DecodersAreNotMade) {
  for (const std::uint32_t threads : {0u, 2u}) {
    for (const std::uint32_t dither : {CORVIN_DITHER_TPDF, CORVIN_DITHER_SHAPED}) {
      DecoderSettings settings;
      settings.dsd_rate = 11289600;  // the longest list of stages
      settings.threads = threads;
      settings.dither = dither;
      fail_each_allocation([&] {
        corvin_decoder* decoder = nullptr;
        const int status = corvin_decoder_create(&settings, &decoder);
        EXPECT_EQ(decoder != nullptr, status == CORVIN_OK);
        corvin_decoder_destroy(decoder);
        return status;
      });
    }
  }
}

TEST(OutOfMemory, FilesAndConversionsEndWithAnError) {
  testing::MemoryStream stream;
  const corvin_stream callbacks = stream.callbacks();
  {
    Writer writer(callbacks, WriterSettings());
    writer.write(Bytes(2 * 4096).data(), 4096);
    writer.finish(32768);
  }
  corvin_pcm_sink sink = {};
  sink.size = sizeof sink;
  sink.write = [](void*, const void*, std::size_t) { return 0; };
  fail_each_allocation([&] {
    corvin_file* file = nullptr;
    int status = corvin_file_open_stream(&callbacks, &file);
    if (status == CORVIN_OK) status = corvin_convert_to_pcm(file, nullptr, &sink, nullptr);
    corvin_file_close(file);
    return status;
  });
}

// As a user whose number of processes is used up.
TEST(OutOfThreads, DecodersAndConversionsEndWithAnError) {
  const pid_t child = fork();
  if (child == 0) {
    const rlimit none = {0, 0};
    constexpr uid_t kNobody = 65534;
    if ((geteuid() == 0 && setuid(kNobody) != 0) || setrlimit(RLIMIT_NPROC, &none) != 0) _exit(77);
    DecoderSettings settings;
    settings.threads = 2;
    corvin_decoder* decoder = nullptr;
    _exit(-corvin_decoder_create(&settings, &decoder));
  }
  int status = 0;
  waitpid(child, &status, 0);
  if (WIFEXITED(status) && WEXITSTATUS(status) == 77) GTEST_SKIP() << "limits cannot be set";
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), -CORVIN_E_THREAD);
}

}  // namespace
}  // namespace corvin::studio

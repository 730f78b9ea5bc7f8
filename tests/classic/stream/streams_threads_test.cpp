// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Streams with and without a converter: bytes come through in order in pieces of any size, calls
// that wait end with the stream, and no size or order of calls reaches beyond a block.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "classic/stream/dsd_decode.h"
#include "classic/stream/dsd_encode.h"
#include "corvin.h"
#include "tests/support/watchdog.h"

namespace {

using Bytes = std::vector<unsigned char>;
using corvin::testing::Watchdog;

Bytes Numbers(std::size_t count) {
  Bytes bytes(count);
  for (std::size_t i = 0; i < count; ++i)
    bytes[i] = static_cast<unsigned char>(i * 2654435761u >> 13);
  return bytes;
}

using Call = std::function<int(unsigned char*, int)>;

/// Moves all bytes in pieces of 0..`longest`; false when a call moves less than it was asked to.
bool MoveCut(Bytes& bytes, int longest, const Call& call) {
  std::mt19937 random(static_cast<unsigned>(longest));
  for (std::size_t at = 0; at < bytes.size();) {
    const int count = static_cast<int>(
        std::min(bytes.size() - at, random() % (static_cast<std::size_t>(longest) + 1)));
    if (call(bytes.data() + at, count) != count) return false;
    at += static_cast<std::size_t>(count);
  }
  return true;
}

/// Runs a call that will wait, then what ends the wait, and returns what the call returned.
int EndWhileWaiting(const std::function<int()>& call, const std::function<void()>& end) {
  std::atomic<bool> begun = false;
  auto waiting = std::async(std::launch::async, [&] {
    begun = true;
    return call();
  });
  while (!begun) std::this_thread::yield();
  EXPECT_EQ(waiting.wait_for(std::chrono::milliseconds(200)), std::future_status::timeout);
  end();
  return waiting.get();
}

// ---- Rings ------------------------------------------------------------------------------------

TEST(Streams, PiecesOfAnySizeComeThroughInOrder) {
  const Watchdog watchdog(100);
  for (const auto& [push, pull] : {std::pair{1000, 20000}, {40000, 7}, {4096, 4096}, {3, 5}}) {
    CDSDDecode stream;
    ASSERT_EQ(stream.Init(1, 44100, 44100, 8), 0);  // blocks of 4096 bytes in both rings
    // The last block stays with the pusher until more follows.
    Bytes sent = Numbers(60000);
    Bytes dsd(56000), pcm(56000);
    auto push_dsd = std::async(std::launch::async, [&stream, sent, size = push]() mutable {
      return MoveCut(sent, size, [&](auto* at, int n) { return stream.DSDWrite(at, n); });
    });
    auto push_pcm = std::async(std::launch::async, [&stream, sent, size = push]() mutable {
      return MoveCut(sent, size, [&](auto* at, int n) { return stream.PCMWrite(at, n); });
    });
    auto pull_dsd = std::async(std::launch::async, [&stream, &dsd, size = pull] {
      return MoveCut(dsd, size, [&](auto* at, int n) { return stream.DSDRead(at, n); });
    });
    EXPECT_TRUE(MoveCut(pcm, pull, [&](auto* at, int n) { return stream.PCMRead(at, n); }));
    EXPECT_TRUE(pull_dsd.get() && push_dsd.get() && push_pcm.get());
    sent.resize(56000);
    EXPECT_TRUE(dsd == sent && pcm == sent) << push << ' ' << pull;
  }
}

TEST(Streams, BlockIsPublishedWhenTheNextOneBegins) {
  const Watchdog watchdog(20);
  void* const handle = DSDDecodeInit(12345);
  auto& stream = *static_cast<CDSDDecode*>(handle);
  EXPECT_EQ(stream.dsdBlockSize, 8192);
  EXPECT_EQ(stream.pcmBlockSize, 384);
  Bytes bytes = Numbers(8193);
  EXPECT_EQ(DSDDecodeSetDSDData(handle, bytes.data(), 0), 0);
  EXPECT_EQ(stream.dsdWriteBlock, nullptr);
  EXPECT_EQ(DSDDecodeSetDSDData(handle, bytes.data(), 8192), 8192);
  CBufferDec* const first = stream.dsdWriteBlock;
  EXPECT_EQ(first, stream.dsdRing.blocks);
  EXPECT_EQ(first->length, 0);
  EXPECT_EQ(DSDDecodeSetDSDData(handle, bytes.data() + 8192, 1), 1);
  EXPECT_EQ(first->length, 8192);
  EXPECT_EQ(stream.dsdWriteSeq, 1);
  Bytes back(8192);
  EXPECT_EQ(stream.DSDRead(back.data(), 8192), 8192);
  bytes.pop_back();
  EXPECT_EQ(back, bytes);
  EXPECT_EQ(DSDDecodeExit(handle), 0);
}

// Converters push PCM to places that count in DSD blocks.
TEST(Streams, PcmIsPlacedByTheDsdBlock) {
  CDSDDecode stream;
  ASSERT_EQ(stream.Init(1, 44100, 44100, 16), 0);  // 4096 and 8192 bytes
  const Bytes bytes = Numbers(5010);
  EXPECT_EQ(stream.PCMWrite(bytes.data(), 5000), 5000);
  EXPECT_EQ(stream.PCMWrite(bytes.data() + 5000, 10), 10);
  const auto* const block = reinterpret_cast<unsigned char*>(stream.pcmRing.blocks[0].data);
  EXPECT_TRUE(std::equal(bytes.begin() + 5000, bytes.end(), block + 5000 % 4096));
  EXPECT_TRUE(std::equal(bytes.begin() + 4000, bytes.begin() + 5000, block + 4000));
}

// Every relation of the two block sizes, the pusher kept going by a thread that releases its
// blocks. The address sanitizer watches the bounds.
TEST(Streams, NoSizeReachesBeyondABlock) {
  const Watchdog watchdog(100);
  std::mt19937 random(11);
  for (int round = 0; round < 40; ++round) {
    CDSDDecode stream;
    const int channels = 1 + static_cast<int>(random() % 8);
    const int pcm_rate = 1 + static_cast<int>(random() % 44100);
    const int bits = 8 + static_cast<int>(random() % 40);
    if (stream.Init(channels, 44100, pcm_rate, bits) != 0) continue;
    const int blocks = 100000 / stream.pcmBlockSize;
    std::thread release([&stream, blocks] {
      for (int seq = 0; seq < blocks; ++seq) stream.pcmRing.Read1Lock(seq, 0)->Read1Unlock(0);
    });
    Bytes bytes(static_cast<std::size_t>(blocks) * static_cast<std::size_t>(stream.pcmBlockSize) +
                1);
    EXPECT_TRUE(MoveCut(bytes, 1 + static_cast<int>(random() % 30000),
                        [&](auto* at, int n) { return stream.PCMWrite(at, n); }));
    EXPECT_EQ(stream.PCMWrite(bytes.data(), 1), 1);  // a copy across the boundary publishes nothing
    release.join();
  }
}

TEST(Streams, ArgumentsOutOfRangeMoveNothing) {
  const Watchdog watchdog(20);
  const int kMax = 2147483647;
  const int kArguments[][4] = {
      {0, 44100, 44100, 24},  {-1, 44100, 44100, 24},  {2, 0, 44100, 24},
      {2, -44100, 44100, 24}, {2, 44100, 0, 24},       {2, 44100, -1, 24},
      {2, 2822400, 600, 24},  {2, 44100, 44100, 7},    {kMax, 44100, 44100, 24},
      {2, 1, kMax, 24},       {8, 44100, 44100, kMax}, {kMax, 1, kMax, kMax}};
  const auto moves_nothing = [](auto& stream) {
    Bytes bytes(100);
    EXPECT_EQ(stream.DSDWrite(bytes.data(), 100), 0);
    EXPECT_EQ(stream.DSDRead(bytes.data(), 100), 0);
    EXPECT_EQ(stream.PCMWrite(bytes.data(), 100), 0);
    EXPECT_EQ(stream.PCMRead(bytes.data(), 100), 0);
  };
  CDSDEncode unready;
  moves_nothing(unready);
  for (const auto& [channels, dsd_rate, pcm_rate, bits] : kArguments) {
    CDSDDecode decode;
    CDSDEncode encode;
    EXPECT_EQ(decode.Init(2, 2822400, 44100, 24), 0);  // does not survive what follows
    EXPECT_EQ(decode.Init(channels, dsd_rate, pcm_rate, bits), -1);
    EXPECT_EQ(encode.Init(channels, dsd_rate, pcm_rate, bits), -1);
    moves_nothing(decode);
    moves_nothing(encode);
  }
  Bytes bytes(10);
  for (void* handle : {DSDDecodeInit(0), static_cast<void*>(nullptr)}) {
    for (int size : {0, -1, -kMax - 1}) {
      EXPECT_EQ(DSDDecodeSetDSDData(handle, bytes.data(), size), 0);
      EXPECT_EQ(DSDDecodeGetPCMData(handle, bytes.data(), size), 0);
    }
    EXPECT_EQ(DSDDecodeSetDSDData(handle, nullptr, 10), 0);
    EXPECT_EQ(DSDDecodeGetPCMData(handle, nullptr, 10), 0);
    EXPECT_EQ(DSDDecodeExit(handle), 0);
  }
  EXPECT_EQ(DSDEncodeSetPCMData(nullptr, bytes.data(), 10), 0);
  EXPECT_EQ(DSDEncodeGetDSDData(nullptr, bytes.data(), 10), 0);
  EXPECT_EQ(DSDEncodeExit(nullptr), 0);
}

// ---- Ends -------------------------------------------------------------------------------------

TEST(Streams, WaitingCallsEndWithTheStream) {
  const Watchdog watchdog(20);
  Bytes bytes(5 * 8192);
  void* stream = DSDDecodeInit(0);
  EXPECT_EQ(EndWhileWaiting([&] { return DSDDecodeSetDSDData(stream, bytes.data(), 5 * 8192); },
                            [&] { EXPECT_EQ(DSDDecodeExit(stream), 0); }),
            4 * 8192);
  stream = DSDDecodeInit(0);
  EXPECT_EQ(EndWhileWaiting([&] { return DSDDecodeGetPCMData(stream, bytes.data(), 1); },
                            [&] { EXPECT_EQ(DSDDecodeExit(stream), 0); }),
            0);
  stream = DSDEncode();
  EXPECT_EQ(EndWhileWaiting([&] { return DSDEncodeSetPCMData(stream, bytes.data(), 8192); },
                            [&] { EXPECT_EQ(DSDEncodeExit(stream), 0); }),
            4 * 384);
}

TEST(Streams, EncodingPullTakesWhatWasPushed) {
  const Watchdog watchdog(20);
  void* const handle = DSDEncode();
  Bytes in = Numbers(30000), out(30000);
  EXPECT_EQ(DSDEncodeGetDSDData(handle, out.data(), 100), 0);
  EXPECT_EQ(DSDEncodeSetPCMData(handle, in.data(), 385), 385);
  EXPECT_EQ(DSDEncodeGetDSDData(handle, out.data(), 100), 0);
  // What a converter would do.
  auto& stream = *static_cast<CDSDEncode*>(handle);
  EXPECT_EQ(stream.DSDWrite(in.data(), 3 * 8192), 3 * 8192);
  EXPECT_EQ(DSDEncodeGetDSDData(handle, out.data(), 2 * 8192), 2 * 8192);
  EXPECT_TRUE(std::equal(out.begin(), out.begin() + 2 * 8192, in.begin()));
  // The third block is with its pusher still.
  EXPECT_EQ(EndWhileWaiting([&] { return DSDEncodeGetDSDData(handle, out.data(), 100); },
                            [&] { stream.DSDWrite(in.data(), 1); }),
            100);
  EXPECT_EQ(stream.PCMRead(out.data(), 384), 384);
  EXPECT_TRUE(std::equal(out.begin(), out.begin() + 384, in.begin()));
  EXPECT_EQ(DSDEncodeExit(handle), 0);
}

// ---- Converters -------------------------------------------------------------------------------

/// Brings DSD bytes to the PCM side as they are, in a thread, by the procedures that the stream
/// hands to converters.
class CopyingConverter : public CDSDtoPCM {
 public:
  explicit CopyingConverter(CDSDDecode* stream)
      : CDSDtoPCM(BufferReadProcDec, stream, BufferWriteProcDec, stream, 1, 44100, 44100, 8) {
    reader_ = std::shared_ptr<std::thread>(new std::thread([stream] {
                                             Bytes bytes(1000);
                                             int count = 1000;
                                             while (count == 1000) {
                                               count =
                                                   BufferReadProcDec(bytes.data(), 1000, stream);
                                               BufferWriteProcDec(bytes.data(), count, stream);
                                             }
                                           }),
                                           [](std::thread* thread) {
                                             thread->join();
                                             delete thread;
                                           });
  }
};

TEST(Streams, ConverterBetweenTheRingsEndsWithTheStream) {
  const Watchdog watchdog(60);
  for (std::size_t pulled : {std::size_t{0}, std::size_t{1}, std::size_t{30000}}) {
    auto stream = std::make_unique<CDSDDecode>();
    ASSERT_EQ(stream->Init(1, 44100, 44100, 8), 0);
    stream->converter = std::make_unique<CopyingConverter>(stream.get());
    Bytes sent = Numbers(200000), got(pulled);
    auto push = std::async(std::launch::async, [&] {
      return stream->DSDWrite(sent.data(), static_cast<int>(sent.size()));
    });
    EXPECT_EQ(stream->PCMRead(got.data(), static_cast<int>(pulled)), static_cast<int>(pulled));
    EXPECT_TRUE(std::equal(got.begin(), got.end(), sent.begin()));
    while (stream->dsdWritePos < 4 * 4096) std::this_thread::yield();
    stream.reset();
    EXPECT_LT(push.get(), 200000);
  }
}

TEST(Streams, ConverterEndsItsStagesInOrder) {
  struct Writer : ConverterWriter {
    explicit Writer(std::string& log) : log_(log) {}
    int Wait() override {
      log_ += 'w';
      return 42;
    }
    std::string& log_;
  };
  struct Staged : CPCMtoDSD2 {
    explicit Staged(std::string& log) : CPCMtoDSD2(nullptr, nullptr, nullptr, nullptr, 2, 1, 1, 8) {
      const auto stage = [&log](char name) {
        return std::shared_ptr<void>(nullptr, [&log, name](void*) { log += name; });
      };
      channel_stages_ = {stage('0'), stage('1')};
      reader_ = stage('r');
      writer_ = std::make_unique<Writer>(log);
    }
  };
  std::string log;
  {
    Staged converter(log);
    int polls = 0;
    const auto twice = [](void* count) { return ++*static_cast<int*>(count) < 2; };
    EXPECT_EQ(converter.Translate(twice, &polls), 42);
    EXPECT_EQ(polls, 2);
    EXPECT_EQ(log, "w");
  }
  EXPECT_EQ(log, "w01rw");
}

}  // namespace

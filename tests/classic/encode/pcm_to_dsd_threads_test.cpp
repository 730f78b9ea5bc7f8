// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Whole conversions through the entry points: bytes of the files, callbacks, failures, both
// directions at once. Each call lasts half a second at least, the time between two polls, so that
// the rows of a table run side by side.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <functional>
#include <numbers>
#include <vector>

#include "classic/encode/pcm_to_dsd_job.h"
#include "classic/files/dsd_header.h"
#include "corvin.h"
#include "tests/support/at_once.h"
#include "tests/support/dsd_files.h"
#include "tests/support/tag_record.h"
#include "tests/support/temp_file.h"

namespace {

using namespace corvin::testing;

struct Job {
  int mode = 2;
  std::size_t frames = 513;
  int channels = 2;
  int bits = 16;
  double pcm_rate = 44100;
  int dsd_rate = 2822400;
  CorvinProgressCallback progress = nullptr;
  void* progress_data = nullptr;
  DSD_TAG* tag = nullptr;
};

/// A tone of a quarter of full scale in every channel, big-endian.
Bytes Pcm(const Job& job) {
  Bytes out;
  const double level = std::ldexp(0.25, job.bits - 1);
  for (std::size_t i = 0; i < job.frames; ++i)
    for (int c = 1; c <= job.channels; ++c) {
      const double cycles = 1000 * c * static_cast<double>(i) / job.pcm_rate;
      const auto sample = std::llround(level * std::sin(2 * std::numbers::pi * cycles));
      AppendBig(out, static_cast<std::uint64_t>(sample), job.bits / 8);
    }
  return out;
}

int Encode(const Bytes& pcm, const char* path, const Job& job) {
  const StreamPointer source = StreamOf(pcm);
  AudioStreamBasicDescription format{};
  format.mSampleRate = job.pcm_rate;
  format.mChannelsPerFrame = static_cast<std::uint32_t>(job.channels);
  format.mBitsPerChannel = static_cast<std::uint32_t>(job.bits);
  return PCMtoDSD(job.mode, static_cast<long long>(pcm.size()), source.get(), path, job.dsd_rate,
                  job.progress, format, job.progress_data, job.tag);
}

Bytes Encoded(const Job& job) {
  const TempFile file;
  EXPECT_EQ(Encode(Pcm(job), file.path(), job), 0);
  return ReadFile(file.path());
}

Bytes Decoded(const char* path, int pcm_rate) {
  const StreamPointer out(std::tmpfile());
  EXPECT_EQ(DSDtoPCM(path, out.get(), nullptr, nullptr, 0, 0, pcm_rate, 24, false), 0);
  return ReadBack(out.get());
}

// The three containers hold the same sound, each in its layout and behind the header that hosts
// compare, with figures of a stereo file for every channel count.
TEST(PcmToDsd, FilesByteForByte) {
  // 512 frames fill a DSF block of 32768 samples exactly, one more begins the next; 1001 frames of
  // 48000 Hz end within a byte.
  const Job rows[] = {{.frames = 0},   {.frames = 512},
                      {.channels = 1}, {.channels = 3},
                      {.bits = 24},    {.frames = 1001, .channels = 4, .pcm_rate = 48000}};
  std::vector<std::function<Bytes()>> calls;
  for (Job job : rows)
    for (job.mode = 1; job.mode <= 3; ++job.mode) calls.push_back([job] { return Encoded(job); });
  const std::vector<Bytes> files = AtOnce(calls);
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    const Job& job = rows[i];
    const auto n = static_cast<std::size_t>(job.channels);
    const std::uint64_t samples = job.frames * 2822400 / static_cast<std::uint64_t>(job.pcm_rate);
    const Bytes &dsdiff = files[3 * i], &dsf = files[3 * i + 1], &one_bit = files[3 * i + 2];
    const std::size_t sound_bytes = static_cast<std::size_t>((samples + 7) / 8) * n;
    ASSERT_GT(dsdiff.size(), sound_bytes);
    const Bytes sound(dsdiff.end() - static_cast<long>(sound_bytes), dsdiff.end());

    Bytes expected = DsdiffFile(static_cast<std::uint16_t>(n), 2822400, sound,
                                {.channels_size = 10,
                                 .properties_size = 94,
                                 .properties_last = DsdiffChunk("ABSS", Bytes(8))});
    // Of more channels than two, the second has no id.
    if (n > 2) expected.erase(expected.begin() + 82, expected.begin() + 86);
    EXPECT_TRUE(dsdiff == expected) << i;

    const std::uint64_t blocks = (samples + 32767) / 32768 * n;
    expected = DsfFile(static_cast<std::uint32_t>(n), 2822400, sound,
                       {.stated_channels = 2, .sample_count = samples, .data_size = 4096 * blocks});
    expected[48] = 2;  // the channel type
    EXPECT_TRUE(dsf == expected) << i;

    expected = OneBitFile(static_cast<std::uint8_t>(n), 2822400, sound);
    expected[34] = job.frames == 0 ? 0 : 1;  // seconds
    EXPECT_TRUE(one_bit == expected) << i;

    if (n != 2 || job.frames == 0) continue;
    Bytes pcm = Pcm(job), memory(sound_bytes + 16, 0xEE);
    RTBufPCMtoDSD(reinterpret_cast<char*>(pcm.data()), static_cast<int>(pcm.size()), 44100,
                  job.bits, memory.data(), 2822400, static_cast<int>(job.frames));
    for (std::size_t k = 0; k < memory.size(); ++k) {
      const std::size_t half = sound_bytes / 2;
      const std::uint8_t byte = k < sound_bytes ? sound[k % half * 2 + k / half] : 0xEE;
      ASSERT_EQ(memory[k], byte) << k;
    }
  }
}

// Interleaved sound in memory: the first half of each block of the plan goes to the buffer's first
// half, the second half to its second. The delay that is dropped shortens the first block.
TEST(PcmToDsd, InterleavedMemoryIsHalvedBlockByBlock) {
  struct Row {
    Job job;
    std::size_t block;  ///< bytes that the plan's blocks hold, of both channels
    std::size_t delay;  ///< bytes dropped, of both channels
  };
  const Row rows[] = {
      {{.mode = 1, .frames = 2001}, 320 * 64 / 8 * 2, 2 * 64},
      {{.mode = 1, .frames = 2001, .pcm_rate = 96000}, 160 * 147 / 5 / 8 * 2, 2 * 59}};
  for (const auto& [job, block, delay] : rows) {
    Bytes pcm = Pcm(job);
    const Bytes file = Encoded(job);
    const Bytes sound(file.begin() + 150, file.end());
    Bytes expected(sound.size());
    std::size_t half = 0;
    for (std::size_t at = 0, end = block - delay; at < sound.size(); at = end, end += block) {
      const std::size_t count = (std::min(end, sound.size()) - at) / 2;
      const auto from = sound.begin() + static_cast<long>(at);
      std::copy_n(from, count, expected.begin() + static_cast<long>(half));
      std::copy_n(from + static_cast<long>(count), count,
                  expected.begin() + static_cast<long>(sound.size() / 2 + half));
      half += count;
    }
    Bytes memory(sound.size());
    CPCMtoDSD encoder(nullptr, nullptr, nullptr, 2, job.dsd_rate, static_cast<int>(job.pcm_rate),
                      false, job.bits, true, job.frames, 1, 0, reinterpret_cast<char*>(pcm.data()),
                      static_cast<int>(pcm.size()), reinterpret_cast<char*>(memory.data()));
    EXPECT_EQ(encoder.Translate2(), 0u);
    EXPECT_TRUE(memory == expected) << job.pcm_rate;
  }
}

TEST(PcmToDsd, OneBitHeaderTellsTheTimeInDecimalDigitsAndTheLowHalfOfItsSize) {
  using namespace corvin::formats;
  const DsdHeader header{1, 2822400, 8000, 8000ull * (12 * 3600 + 34 * 60 + 56) - 7999};
  const StreamPointer stream(std::tmpfile());
  EXPECT_TRUE(WriteDsdHeader(stream.get(), kOneBit, header));
  Bytes expected =
      OneBitFile(1, 2822400, {}, {.file_size = (2048 + SoundBytes(header)) & 0xffffffff});
  std::copy_n("\x12\x34\x56", 3, expected.begin() + 32);
  EXPECT_EQ(ReadBack(stream.get()), expected);

  const StreamPointer read_only(std::fopen("/dev/null", "rb"));
  ::testing::internal::CaptureStderr();
  EXPECT_FALSE(WriteDsdHeader(read_only.get(), kDsf, header));
  EXPECT_EQ(::testing::internal::GetCapturedStderr().substr(0, 28), "Write error¥nWrite error¥n");
}

TEST(PcmToDsd, APartialFrameIsDropped) {
  Bytes pcm = Pcm({});
  pcm.insert(pcm.end(), 3, 0x7f);
  const TempFile file;
  EXPECT_EQ(Encode(pcm, file.path(), {}), 0);
  EXPECT_EQ(ReadFile(file.path()), Encoded({}));
}

TEST(PcmToDsd, ATagIsWrittenBehindTheSoundOfADsfOnly) {
  TagRecord tag;
  std::strcpy(tag.title, "Künstler");
  tag.PictureAlloc(1, 5000, false)->pictureType = 3;
  const auto files = AtOnce<Bytes>(
      {[] { return Encoded({}); }, [&] { return Encoded({.tag = &tag}); },
       [] { return Encoded({.mode = 1}); }, [&] { return Encoded({.mode = 1, .tag = &tag}); }});
  Bytes expected = files[0];
  Append(expected, WriteTag(tag));
  Bytes sizes;
  AppendLittle(AppendLittle(sizes, expected.size(), 8), files[0].size(), 8);
  std::copy(sizes.begin(), sizes.end(), expected.begin() + 12);
  EXPECT_EQ(files[1], expected);
  EXPECT_EQ(files[3], files[2]);
}

// ---- Callbacks and failures -------------------------------------------------------------------

TEST(PcmToDsd, ArgumentsOutOfRangeLeaveAnExistingFileAlone) {
  const Bytes good = {1, 2, 3};
  const TempFile file(good);
  const Bytes pcm = Pcm({});
  const auto refused = [&](const Job& job) { return Encode(pcm, file.path(), job); };
  for (const int mode : {0, 4, -1}) EXPECT_EQ(refused({.mode = mode}), 0) << mode;
  for (const int channels : {0, 9}) EXPECT_EQ(refused({.channels = channels}), -1) << channels;
  for (const int bits : {0, 20}) EXPECT_EQ(refused({.bits = bits}), -1) << bits;
  for (const double rate : {0.0, -44100.0, 0.5, 1e300, std::nan(""), 2822401.0, 100.0})
    EXPECT_EQ(refused({.pcm_rate = rate}), -1) << rate;
  for (const int rate : {0, -1, 44099, 98304001})
    EXPECT_EQ(refused({.dsd_rate = rate}), -1) << rate;
  EXPECT_EQ(Encode(pcm, nullptr, {}), -1);
  EXPECT_EQ(Encode(pcm, "/nonexistent/directory/file.dsf", {}), -1);
  AudioStreamBasicDescription format{};
  format.mSampleRate = 44100;
  format.mChannelsPerFrame = 2;
  format.mBitsPerChannel = 16;
  const StreamPointer source = StreamOf(pcm);
  const auto sized = [&](long long bytes, std::FILE* stream) {
    return PCMtoDSD(2, bytes, stream, file.path(), 2822400, nullptr, format, nullptr, nullptr);
  };
  EXPECT_EQ(sized(400, nullptr), -1);
  EXPECT_EQ(sized(-1, source.get()), -1);
  EXPECT_EQ(sized(1LL << 62, source.get()), -1);
  EXPECT_EQ(ReadFile(file.path()), good);

  Bytes out(16, 0xEE), in(64);
  const auto in_memory = [&](int bytes, int pcm_rate, int bits, unsigned dsd_rate, int frames) {
    RTBufPCMtoDSD(reinterpret_cast<char*>(in.data()), bytes, pcm_rate, bits, out.data(), dsd_rate,
                  frames);
  };
  in_memory(64, 0, 16, 2822400, 16);
  in_memory(64, 44100, 15, 2822400, 16);
  in_memory(-64, 44100, 16, 2822400, 16);
  in_memory(64, 44100, 16, 4000000000u, 16);
  in_memory(64, 44100, 16, 2822400, -1);
  EXPECT_EQ(out, Bytes(16, 0xEE));
}

TEST(PcmToDsd, FullDiskIsAFailureThatLeavesTheDevice) {
  namespace fs = std::filesystem;
  if (!fs::exists("/dev/full")) GTEST_SKIP() << "no device that is always full";
  const TempFile link;  // which stands in for the device where that would be removed
  fs::create_symlink("/dev/full", link.path());
  std::vector<std::function<int()>> calls;
  for (const int mode : {1, 2, 3})
    for (const std::size_t frames : {1, 20000})
      calls.push_back([&link, job = Job{.mode = mode, .frames = frames}] {
        return Encode(Pcm(job), link.path(), job);
      });
  EXPECT_EQ(AtOnce(calls), std::vector<int>(6, -1));
  EXPECT_TRUE(fs::is_symlink(link.path()));
}

TEST(PcmToDsd, CancelEndsAtOnceWithAFileThatReadsBack) {
  struct Row {
    int mode;
    std::size_t header;
  };
  for (const auto& [mode, header] : {Row{1, 150}, Row{2, 92}, Row{3, 2048}}) {
    const TempFile file;
    int calls = 0;
    Job job{.mode = mode, .dsd_rate = 11289600};
    job.progress_data = &calls;
    job.progress = [](int percent, void* data) {
      EXPECT_GE(percent, 0);
      EXPECT_LT(percent, 100);
      ++*static_cast<int*>(data);
      return false;
    };
    EXPECT_EQ(Encode(Bytes(4 * 44100 * 300), file.path(), job), -1);  // minutes of work
    EXPECT_EQ(calls, 1);
    const Bytes dsd = ReadFile(file.path());
    ASSERT_GT(dsd.size(), header) << mode;
    if (mode == 2) {
      Bytes size;
      AppendLittle(size, dsd.size(), 8);
      EXPECT_EQ(Bytes(dsd.begin() + 12, dsd.begin() + 20), size);
    }
    // Its header promises minutes; what is there comes back.
    const std::size_t samples = (dsd.size() - header) / 2 * 8;
    EXPECT_EQ(Decoded(file.path(), 44100).size(), 6 * (samples / 256)) << mode;
  }
}

TEST(PcmToDsd, ConversionsInBothDirectionsAtOnceGiveTheirOwnBytes) {
  const TempFile dsf(DsfFile(2, 2822400, Bytes(2 * 20011, 0x96)));
  const std::vector<std::function<Bytes()>> jobs = {
      [] { return Encoded({.frames = 4001, .dsd_rate = 3072000}); },
      [] { return Encoded({.mode = 3, .frames = 4001, .channels = 1, .dsd_rate = 11289600}); },
      [&] { return Decoded(dsf.path(), 88200); }};
  std::vector<std::function<Bytes()>> calls;
  std::vector<Bytes> alone;
  for (const auto& job : jobs) {
    calls.insert(calls.end(), 4, job);
    alone.insert(alone.end(), 4, job());
  }
  EXPECT_TRUE(AtOnce(calls) == alone);
}

}  // namespace

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Whole conversions through the entry points: header bytes, lengths, callbacks, failures, both
// directions at once. Each call lasts half a second at least, the time between two polls.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <future>
#include <iterator>
#include <numbers>
#include <vector>

#include "corvin.h"
#include "tests/support/dsd_files.h"
#include "tests/support/temp_file.h"

namespace {

using corvin::testing::AppendBig;
using corvin::testing::AppendLittle;
using corvin::testing::Bytes;
using corvin::testing::TempFile;

/// A tone in every channel, big-endian.
Bytes Pcm(std::size_t frames, int channels, int bits, double rate = 44100, double amplitude = 0.5) {
  Bytes out;
  const double full = std::ldexp(1.0, bits - 1) - 1;
  for (std::size_t i = 0; i < frames; ++i)
    for (int c = 0; c < channels; ++c)
      AppendBig(out,
                static_cast<std::uint64_t>(std::llround(
                    full * amplitude *
                    std::sin(2 * std::numbers::pi * 1000 * (c + 1) * static_cast<double>(i) / rate))),
                bits / 8);
  return out;
}

struct Job {
  int mode = 2;
  int channels = 2;
  int bits = 16;
  double pcm_rate = 44100;
  int dsd_rate = 2822400;
  CorvinProgressCallback progress = nullptr;
  void* progress_data = nullptr;
  DSD_TAG* tag = nullptr;
};

int Encode(const Bytes& pcm, const char* path, const Job& job) {
  std::FILE* const source = std::tmpfile();
  if (!pcm.empty()) std::fwrite(pcm.data(), 1, pcm.size(), source);
  std::rewind(source);
  AudioStreamBasicDescription format{};
  format.mSampleRate = job.pcm_rate;
  format.mChannelsPerFrame = static_cast<std::uint32_t>(job.channels);
  format.mBitsPerChannel = static_cast<std::uint32_t>(job.bits);
  const int result = PCMtoDSD(job.mode, static_cast<long long>(pcm.size()), source, path,
                              job.dsd_rate, job.progress, format, job.progress_data, job.tag);
  std::fclose(source);
  return result;
}

Bytes ReadFile(const char* path) {
  std::ifstream file(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(file), {});
}

Bytes Encoded(const Bytes& pcm, const Job& job) {
  const TempFile file;
  EXPECT_EQ(Encode(pcm, file.path(), job), 0);
  return ReadFile(file.path());
}

bool Exists(const char* path) {
  struct stat status;
  return stat(path, &status) == 0;
}

/// Headers as the containers' tables give them, written out by hand.
Bytes DsfHeader(std::uint64_t samples, std::uint64_t blocks) {
  Bytes h;
  corvin::testing::Append(h, "DSD ");
  AppendLittle(AppendLittle(AppendLittle(h, 28, 8), 92 + 4096 * blocks, 8), 0, 8);
  corvin::testing::Append(h, "fmt ");
  AppendLittle(h, 52, 8);
  for (int value : {1, 0, 2, 2, 2822400, 1}) AppendLittle(h, static_cast<std::uint64_t>(value), 4);
  AppendLittle(AppendLittle(AppendLittle(h, samples, 8), 4096, 4), 0, 4);
  corvin::testing::Append(h, "data");
  return AppendLittle(h, 4096 * blocks, 8);
}

TEST(PcmToDsd, DsfHeaderAndBlocks) {
  // 512 frames fill a block of 32768 samples exactly; one more begins the next.
  for (const std::size_t frames : {std::size_t{512}, std::size_t{513}, std::size_t{0}}) {
    for (const int channels : {1, 2, 3}) {
      Job job;
      job.channels = channels;
      const Bytes file = Encoded(Pcm(frames, channels, 16), job);
      const std::uint64_t blocks =
          (frames * 64 + 32767) / 32768 * static_cast<std::uint64_t>(channels);
      ASSERT_EQ(file.size(), 92 + 4096 * blocks);
      EXPECT_EQ(Bytes(file.begin(), file.begin() + 92), DsfHeader(frames * 64, blocks));
      if (frames == 513) {
        for (int c = 0; c < channels; ++c) {
          const auto last = file.end() - 4096 * (c + 1);
          EXPECT_EQ(Bytes(last + 8, last + 4096), Bytes(4096 - 8, 0)) << c;
          EXPECT_NE(Bytes(last, last + 8), Bytes(8, 0)) << c;
        }
      }
    }
  }
}

TEST(PcmToDsd, DsdiffHeader) {
  for (const int channels : {1, 2, 4}) {
    Job job;
    job.mode = 1;
    job.channels = channels;
    job.pcm_rate = 48000;
    const Bytes file = Encoded(Pcm(1001, channels, 16), job);
    const auto n = static_cast<std::uint64_t>(channels);
    const std::uint64_t sound = (1001ull * 2822400 / 48000 + 7) / 8 * n;
    Bytes h;
    corvin::testing::Append(h, "FRM8");
    AppendBig(h, 4 * n + 130 + sound, 8);
    corvin::testing::Append(h, "DSD FVER");
    AppendBig(AppendBig(h, 4, 8), 0x01050000, 4);
    corvin::testing::Append(h, "PROP");
    AppendBig(h, 94, 8);
    corvin::testing::Append(h, "SND FS  ");
    AppendBig(AppendBig(h, 4, 8), 2822400, 4);
    corvin::testing::Append(h, "CHNL");
    AppendBig(AppendBig(h, 10, 8), n, 2);
    corvin::testing::Append(h, channels == 1 ? "SLFT" : channels == 2 ? "SLFTSRGT" : "SLFT        ");
    corvin::testing::Append(h, "CMPR");
    AppendBig(h, 20, 8);
    corvin::testing::Append(h, "DSD ");
    h.push_back(14);
    corvin::testing::Append(h, "not compressed");
    h.push_back(0);
    corvin::testing::Append(h, "ABSS");
    AppendBig(AppendBig(h, 8, 8), 0, 8);
    corvin::testing::Append(h, "DSD ");
    AppendBig(h, sound, 8);
    ASSERT_EQ(file.size(), h.size() + sound) << channels;
    EXPECT_EQ(Bytes(file.begin(), file.begin() + static_cast<long>(h.size())), h) << channels;
  }
}

TEST(PcmToDsd, OneBitHeader) {
  for (const int channels : {1, 2}) {
    Job job;
    job.mode = 3;
    job.channels = channels;
    job.pcm_rate = 8000;
    // Eleven seconds and a bit count as twelve, in packed decimal digits.
    const std::size_t frames = 8000 * 11 + 1;
    const Bytes file = Encoded(Bytes(frames * 2 * static_cast<std::size_t>(channels)), job);
    const auto n = static_cast<std::uint64_t>(channels);
    const std::uint64_t sound = (frames * 2822400ull / 8000 + 7) / 8 * n;
    Bytes h;
    corvin::testing::Append(h, "1bit");
    AppendBig(AppendBig(h, 0, 4), 0x10000000, 4);
    for (const std::uint64_t value : {2048 + sound, std::uint64_t{0}, std::uint64_t{128},
                                      std::uint64_t{2048}, std::uint64_t{0}, std::uint64_t{0x00001200},
                                      std::uint64_t{2822400}, std::uint64_t{0}, n << 24})
      AppendBig(h, value, 4);
    AppendBig(h, channels == 1 ? 0x40000000 : 0x44000000, 4);
    h.resize(128, 0);
    h.resize(2048, ' ');
    ASSERT_EQ(file.size(), 2048 + sound);
    EXPECT_EQ(Bytes(file.begin(), file.begin() + 2048), h);
  }
}

TEST(PcmToDsd, ContainersAndMemoryHoldTheSameSound) {
  const Bytes pcm = Pcm(3001, 2, 24);
  Job job;
  job.bits = 24;
  const std::size_t bytes = 3001 * 64 / 8;
  std::vector<Bytes> files;
  for (const int mode : {1, 2, 3}) {
    job.mode = mode;
    files.push_back(Encoded(pcm, job));
  }
  const Bytes dsdiff(files[0].end() - static_cast<long>(2 * bytes), files[0].end());
  EXPECT_EQ(Bytes(files[2].begin() + 2048, files[2].end()), dsdiff);
  Bytes memory(2 * bytes + 16, 0xEE), source = pcm;
  RTBufPCMtoDSD(reinterpret_cast<char*>(source.data()), static_cast<int>(pcm.size()), 44100, 24,
                memory.data(), 2822400, 3001);
  EXPECT_EQ(Bytes(memory.end() - 16, memory.end()), Bytes(16, 0xEE));
  for (std::size_t c = 0; c < 2; ++c) {
    for (std::size_t i = 0; i < bytes; ++i) {
      const std::uint8_t expected = dsdiff[2 * i + c];
      ASSERT_EQ(memory[c * bytes + i], expected) << i;
      std::uint8_t reversed = 0;
      for (int bit = 0; bit < 8; ++bit)
        reversed = static_cast<std::uint8_t>(reversed | (expected >> bit & 1) << (7 - bit));
      ASSERT_EQ(files[1][92 + (i / 4096 * 2 + c) * 4096 + i % 4096], reversed) << i;
    }
  }
}

// ---- Callbacks and failures -------------------------------------------------------------------

TEST(PcmToDsd, UnknownModesDoNothing) {
  const TempFile file;
  for (const int mode : {0, 4, -1}) {
    Job job;
    job.mode = mode;
    EXPECT_EQ(Encode(Pcm(10, 2, 16), file.path(), job), 0);
  }
  EXPECT_FALSE(Exists(file.path()));
}

TEST(PcmToDsd, ArgumentsOutOfRangeLeaveAnExistingFileAlone) {
  const Bytes good = {1, 2, 3};
  const TempFile file(good);
  const Bytes pcm = Pcm(100, 2, 16);
  const auto refused = [&](auto change) {
    Job job;
    change(job);
    return Encode(pcm, file.path(), job);
  };
  EXPECT_EQ(refused([](Job& j) { j.channels = 0; }), -1);
  EXPECT_EQ(refused([](Job& j) { j.channels = 9; }), -1);
  EXPECT_EQ(refused([](Job& j) { j.bits = 0; }), -1);
  EXPECT_EQ(refused([](Job& j) { j.bits = 20; }), -1);
  for (const double rate : {0.0, -44100.0, 0.5, 1e300, std::nan(""), 2822401.0, 100.0})
    EXPECT_EQ(refused([rate](Job& j) { j.pcm_rate = rate; }), -1) << rate;
  for (const int rate : {0, -1, 44099, 98304001})
    EXPECT_EQ(refused([rate](Job& j) { j.dsd_rate = rate; }), -1) << rate;
  AudioStreamBasicDescription format{};
  format.mSampleRate = 44100;
  format.mChannelsPerFrame = 2;
  format.mBitsPerChannel = 16;
  std::FILE* const source = std::tmpfile();
  EXPECT_EQ(PCMtoDSD(2, 400, nullptr, file.path(), 2822400, nullptr, format, nullptr, nullptr), -1);
  EXPECT_EQ(PCMtoDSD(2, 400, source, nullptr, 2822400, nullptr, format, nullptr, nullptr), -1);
  EXPECT_EQ(PCMtoDSD(2, -1, source, file.path(), 2822400, nullptr, format, nullptr, nullptr), -1);
  EXPECT_EQ(PCMtoDSD(2, 1LL << 62, source, file.path(), 2822400, nullptr, format, nullptr, nullptr),
            -1);
  std::fclose(source);
  EXPECT_EQ(ReadFile(file.path()), good);
  EXPECT_EQ(Encode(pcm, "/nonexistent/directory/file.dsf", {}), -1);

  Bytes out(16, 0xEE), in(64);
  char* const p = reinterpret_cast<char*>(in.data());
  RTBufPCMtoDSD(p, 64, 0, 16, out.data(), 2822400, 16);
  RTBufPCMtoDSD(p, 64, 44100, 15, out.data(), 2822400, 16);
  RTBufPCMtoDSD(p, -64, 44100, 16, out.data(), 2822400, 16);
  RTBufPCMtoDSD(p, 64, 44100, 16, out.data(), 4000000000u, 16);
  RTBufPCMtoDSD(p, 64, 44100, 16, out.data(), 2822400, -1);
  EXPECT_EQ(out, Bytes(16, 0xEE));
}

TEST(PcmToDsd, FullDiskIsAFailure) {
  if (!Exists("/dev/full")) GTEST_SKIP() << "no device that is always full";
  for (const int mode : {1, 2, 3}) {
    Job job;
    job.mode = mode;
    EXPECT_EQ(Encode(Pcm(20000, 2, 16), "/dev/full", job), -1) << mode;
    EXPECT_EQ(Encode(Pcm(1, 2, 16), "/dev/full", job), -1) << mode;
  }
  EXPECT_TRUE(Exists("/dev/full"));
}

TEST(PcmToDsd, CancelLeavesACompleteHeaderAndFinishedDsf) {
  const TempFile file;
  Job job;
  job.dsd_rate = 11289600;
  int calls = 0;
  job.progress_data = &calls;
  job.progress = [](int percent, void* data) {
    EXPECT_GE(percent, 0);
    EXPECT_LT(percent, 100);
    ++*static_cast<int*>(data);
    return false;
  };
  const Bytes pcm = Bytes(4 * 44100 * 300);  // minutes of work
  EXPECT_EQ(Encode(pcm, file.path(), job), -1);
  EXPECT_EQ(calls, 1);
  const Bytes dsf = ReadFile(file.path());
  ASSERT_GT(dsf.size(), 92u);
  EXPECT_EQ(std::memcmp(dsf.data(), "DSD ", 4), 0);
  Bytes size;
  AppendLittle(size, dsf.size(), 8);
  EXPECT_EQ(Bytes(dsf.begin() + 12, dsf.begin() + 20), size);
}

TEST(PcmToDsd, ATagIsWrittenBehindTheSoundAndReadBack) {
  DSD_TAG tag{};
  std::strcpy(tag.title, "Title");
  std::strcpy(tag.artist, "K\xC3\xBCnstler");
  tag.year = 2011;
  tag.PictureAlloc(1, 5000, false)->pictureType = 3;
  Job job;
  job.tag = &tag;
  const TempFile file;
  ASSERT_EQ(Encode(Pcm(513, 2, 16), file.path(), job), 0);
  const Bytes dsf = ReadFile(file.path());
  const std::uint64_t sound_end = 92 + 4 * 4096;
  Bytes sizes;
  AppendLittle(AppendLittle(sizes, dsf.size(), 8), sound_end, 8);
  EXPECT_EQ(Bytes(dsf.begin() + 12, dsf.begin() + 28), sizes);
  ASSERT_GT(dsf.size(), sound_end + 5000);
  EXPECT_EQ(std::memcmp(dsf.data() + sound_end, "ID3\x03", 4), 0);
  DSD_TAG back{};
  ASSERT_EQ(DSDTag(file.path(), &back), 0);
  EXPECT_STREQ(back.title, tag.title);
  EXPECT_STREQ(back.artist, tag.artist);
  EXPECT_EQ(back.year, 2011);
  ASSERT_EQ(back.pictureCount, 1);
  EXPECT_EQ(back.pictures[0]->dataSize, 5000);
  DSDTagClear(&back);
  // The other containers carry none.
  for (const int mode : {1, 3}) {
    job.mode = mode;
    const Bytes tagged = Encoded(Pcm(513, 2, 16), job);
    job.tag = nullptr;
    EXPECT_EQ(Encoded(Pcm(513, 2, 16), job), tagged);
    job.tag = &tag;
  }
  DSDTagClear(&tag);
}

TEST(PcmToDsd, APartialFrameIsDropped) {
  Bytes pcm = Pcm(1000, 2, 16);
  const Bytes whole = Encoded(pcm, {});
  pcm.insert(pcm.end(), 3, 0x7f);
  EXPECT_EQ(Encoded(pcm, {}), whole);
}

// ---- Round trips and many at once -------------------------------------------------------------

TEST(PcmToDsd, RoundTripKeepsLengthPlaceAndLevel) {
  struct Row {
    int pcm_rate;
    int dsd_rate;
    double delay_frames;
  };
  // Up: four frames, less what rounding the drop to bytes takes off. Down: the filter's centre lies
  // (n + 2) P / 2 steps of 1 / L sample back, of which the writer drops whole frames:
  // round(DEFTAPS / 2 / M) M. For 44100 to 2822400 and back: 4 - (256 - 244) / 64.
  constexpr Row kRows[] = {{44100, 2822400, 3.8125},
                           {96000, 3072000, 4.375},
                           {48000, 2822400, 4.1224},
                           {44100, 3072000, 3.6261}};
  for (const Row& row : kRows) {
    const auto frames = static_cast<std::size_t>(row.pcm_rate) / 5 + 1;
    const TempFile dsf;
    Job job;
    job.bits = 24;
    job.pcm_rate = row.pcm_rate;
    job.dsd_rate = row.dsd_rate;
    ASSERT_EQ(Encode(Pcm(frames, 2, 24, row.pcm_rate, 0.25), dsf.path(), job), 0);
    std::FILE* const out = std::tmpfile();
    ASSERT_EQ(DSDtoPCM(dsf.path(), out, nullptr, nullptr, 0, 0, row.pcm_rate, 24, false), 0);
    Bytes pcm(static_cast<std::size_t>(std::ftell(out)));
    std::rewind(out);
    ASSERT_EQ(std::fread(pcm.data(), 1, pcm.size(), out), pcm.size());
    std::fclose(out);
    const std::uint64_t samples = frames * static_cast<std::uint64_t>(row.dsd_rate) /
                                  static_cast<std::uint64_t>(row.pcm_rate);
    EXPECT_EQ(pcm.size() / 6, samples * static_cast<std::uint64_t>(row.pcm_rate) /
                                  static_cast<std::uint64_t>(row.dsd_rate));
    double re = 0, im = 0;
    const std::size_t count = static_cast<std::size_t>(row.pcm_rate) / 10;
    for (std::size_t i = 1000; i < 1000 + count; ++i) {
      const std::uint32_t word = static_cast<std::uint32_t>(pcm[6 * i] << 8 | pcm[6 * i + 1] << 16) |
                                 static_cast<std::uint32_t>(pcm[6 * i + 2]) << 24;
      const double x = static_cast<std::int32_t>(word) / 2147483648.0;
      const double angle = 2 * std::numbers::pi * 1000 * static_cast<double>(i) / row.pcm_rate;
      re += x * std::cos(angle);
      im += x * std::sin(angle);
    }
    const double amplitude = 2 * std::hypot(re, im) / static_cast<double>(count);
    const double delay = std::atan2(-re, im) / (2 * std::numbers::pi * 1000) * row.pcm_rate;
    EXPECT_NEAR(delay, row.delay_frames, 0.001) << row.pcm_rate;
    EXPECT_NEAR(amplitude, 0.25, 0.03) << row.pcm_rate;
  }
}

TEST(PcmToDsd, ConversionsInBothDirectionsAtOnce) {
  const Bytes pcm = Pcm(4001, 2, 16);
  std::vector<Job> jobs(4);
  jobs[1].dsd_rate = 3072000;
  jobs[2].mode = 1;
  jobs[2].pcm_rate = 96000;
  jobs[2].dsd_rate = 5644800;
  jobs[3].mode = 3;
  jobs[3].channels = 1;
  jobs[3].dsd_rate = 11289600;
  const TempFile dsf(corvin::testing::DsfFile(2, 2822400, Bytes(2 * 20011, 0x96)));
  const auto decode = [&] {
    std::FILE* const out = std::tmpfile();
    EXPECT_EQ(DSDtoPCM(dsf.path(), out, nullptr, nullptr, 0, 0, 88200, 24, false), 0);
    Bytes bytes(static_cast<std::size_t>(std::ftell(out)));
    std::rewind(out);
    EXPECT_EQ(std::fread(bytes.data(), 1, bytes.size(), out), bytes.size());
    std::fclose(out);
    return bytes;
  };
  std::vector<Bytes> alone;
  for (const Job& job : jobs) alone.push_back(Encoded(pcm, job));
  alone.push_back(decode());
  for (int round = 0; round < 2; ++round) {
    std::vector<std::future<Bytes>> running;
    for (int copy = 0; copy < 2; ++copy) {
      for (const Job& job : jobs)
        running.push_back(std::async(std::launch::async, [&pcm, job] { return Encoded(pcm, job); }));
      running.push_back(std::async(std::launch::async, decode));
    }
    for (std::size_t i = 0; i < running.size(); ++i)
      EXPECT_EQ(running[i].get(), alone[i % alone.size()]) << i;
  }
}

}  // namespace

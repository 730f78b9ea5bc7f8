// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Whole conversions through the entry points: containers, callbacks, hostile files, many at once.
// Each call lasts half a second at least, the time between two polls, so that the rows of a table
// run side by side.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <future>
#include <map>
#include <vector>

#include "corvin.h"
#include "decode/sound_search.h"
#include "formats/input_file.h"
#include "tests/support/dsd_files.h"
#include "tests/support/dsd_signals.h"
#include "tests/support/temp_file.h"

namespace {

using corvin::testing::Bytes;
using corvin::testing::DsdiffFile;
using corvin::testing::DsdiffOptions;
using corvin::testing::DsfFile;
using corvin::testing::DsfOptions;
using corvin::testing::OneBitFile;
using corvin::testing::OneBitOptions;
using corvin::testing::TempFile;

constexpr std::uint32_t kDsd64 = 2822400;

struct Outcome {
  int result = 0;
  Bytes pcm;

  bool operator==(const Outcome&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
  return out << outcome.result << " with " << outcome.pcm.size() << " bytes";
}

Outcome Convert(const char* path, int pcm_rate = 88200, int bits = 24, bool big_endian = false,
                CorvinProgressCallback progress = nullptr, void* data = nullptr) {
  std::FILE* const out = std::tmpfile();
  Outcome outcome;
  outcome.result = DSDtoPCM(path, out, progress, data, 0, 0, pcm_rate, bits, big_endian);
  outcome.pcm.resize(static_cast<std::size_t>(std::ftell(out)));
  std::rewind(out);
  EXPECT_EQ(std::fread(outcome.pcm.data(), 1, outcome.pcm.size(), out), outcome.pcm.size());
  std::fclose(out);
  return outcome;
}

Outcome Convert(const Bytes& file, int pcm_rate = 88200, int bits = 24) {
  const TempFile temp(file);
  return Convert(temp.path(), pcm_rate, bits);
}

/// Runs every conversion in a thread of its own.
std::vector<Outcome> ConvertAll(const std::vector<Bytes>& files, int pcm_rate = 88200,
                                int bits = 24) {
  std::vector<std::future<Outcome>> running;
  for (const Bytes& file : files)
    running.push_back(std::async(std::launch::async,
                                 [&file, pcm_rate, bits] { return Convert(file, pcm_rate, bits); }));
  std::vector<Outcome> outcomes;
  for (auto& outcome : running) outcomes.push_back(outcome.get());
  return outcomes;
}

Bytes Payload(int channels, std::size_t frames) {
  std::vector<Bytes> packed;
  for (int c = 0; c < channels; ++c)
    packed.push_back(corvin::testing::PackBits(
        corvin::testing::RandomBits(8 * frames, static_cast<std::uint64_t>(c) + 5), false));
  return corvin::testing::Interleave(packed);
}

// Bit order, block layout and block size of a container do not change what is heard. Only the
// silence behind the end differs, by its bit order, and there only in the last samples.
TEST(DsdToPcm, ContainersGiveTheSameSound) {
  for (int channels : {1, 2, 6}) {
    const Bytes payload = Payload(channels, 50021);
    const auto count = static_cast<std::uint32_t>(channels);
    std::vector<Bytes> files = {
        DsdiffFile(static_cast<std::uint16_t>(channels), kDsd64, payload),
        OneBitFile(static_cast<std::uint8_t>(channels), kDsd64, payload)};
    for (std::uint32_t block : {1u, 512u, 4096u, 100000u}) {
      DsfOptions options;
      options.block_bytes = block;
      options.sample_count = 8 * 50021;
      files.push_back(DsfFile(count, kDsd64, payload, options));
    }
    const auto outcomes = ConvertAll(files);
    const std::size_t frame = 3 * static_cast<std::size_t>(std::min(channels, 2));
    const std::size_t length = frame * (8 * 50021 / 32);
    for (const Outcome& outcome : outcomes) {
      EXPECT_EQ(outcome.result, 0);
      ASSERT_EQ(outcome.pcm.size(), length);
      // The filter of this pair is 1488 taps long, 47 output samples.
      EXPECT_TRUE(std::equal(outcome.pcm.begin(), outcome.pcm.end() - 47 * static_cast<long>(frame),
                             outcomes[0].pcm.begin()));
    }
    EXPECT_EQ(outcomes[0], outcomes[1]);
    for (std::size_t i = 3; i < outcomes.size(); ++i) EXPECT_EQ(outcomes[2], outcomes[i]);
  }
}

TEST(DsdToPcm, MemoryGivesWhatAFileGives) {
  const Bytes payload = Payload(2, 30011);
  Bytes halves;
  for (std::size_t c = 0; c < 2; ++c)
    for (std::size_t i = c; i < payload.size(); i += 2) halves.push_back(payload[i]);
  for (int bits : {16, 24}) {
    const TempFile file(DsdiffFile(2, kDsd64, payload));
    const Outcome expected = Convert(file.path(), 96000, bits, true);
    Bytes pcm(expected.pcm.size() + 16, 0xEE);
    RTBufDSDtoPCM(reinterpret_cast<char*>(halves.data()), 30011, kDsd64,
                  reinterpret_cast<char*>(pcm.data()), 96000, bits);
    EXPECT_EQ(Bytes(pcm.end() - 16, pcm.end()), Bytes(16, 0xEE));
    pcm.resize(expected.pcm.size());
    EXPECT_EQ(pcm, expected.pcm);
  }
  Bytes pcm(16, 0xEE);
  char* const out = reinterpret_cast<char*>(pcm.data());
  char* const in = reinterpret_cast<char*>(halves.data());
  RTBufDSDtoPCM(in, 0, kDsd64, out, 44100, 16);
  RTBufDSDtoPCM(in, -1, kDsd64, out, 44100, 16);
  RTBufDSDtoPCM(in, 16, 0, out, 44100, 16);
  RTBufDSDtoPCM(in, 16, kDsd64, out, 0, 16);
  RTBufDSDtoPCM(in, 16, kDsd64, out, 44100, 17);
  RTBufDSDtoPCM(nullptr, 16, kDsd64, out, 44100, 16);
  EXPECT_EQ(pcm, Bytes(16, 0xEE));
}

TEST(DsdToPcm, EveryDataChunkIsConvertedInTurn) {
  const Bytes payload = Payload(2, 4096);
  const Bytes one = DsfFile(2, kDsd64, payload);
  Bytes two = one;
  corvin::testing::Append(two, Bytes(one.end() - (12 + 2 * 4096), one.end()));
  Bytes unknown = two;
  unknown.erase(unknown.begin() + 4, unknown.begin() + 28);  // no rest of the first chunk
  unknown[0] = 'X';
  const auto outcomes = ConvertAll({one, two, unknown});
  Bytes twice = outcomes[0].pcm;
  corvin::testing::Append(twice, outcomes[0].pcm);
  EXPECT_EQ(outcomes[1].pcm, twice);
  EXPECT_EQ(outcomes[2].pcm, twice);
}

TEST(DsdToPcm, MissingSoundOfACutDsfIsSilenceToTheEndOfItsGroup) {
  const Bytes payload = Payload(2, 3 * 4096);
  const Bytes whole = DsfFile(2, kDsd64, payload);
  const Bytes cut(whole.begin(), whole.begin() + 92 + 2 * 4096 + 4096 + 100);
  Bytes padded(whole.begin(), whole.begin() + 92 + 2 * 4096 + 4096 + 100);
  padded.resize(92 + 4 * 4096, 0x69);
  // The padded file states the samples that it has.
  padded[64] = 0;
  padded[65] = 0;
  padded[66] = 1;  // 65536
  const auto outcomes = ConvertAll({cut, padded});
  EXPECT_EQ(outcomes[0].result, 0);
  ASSERT_GE(outcomes[0].pcm.size(), outcomes[1].pcm.size());
  EXPECT_EQ(Bytes(outcomes[0].pcm.begin(),
                  outcomes[0].pcm.begin() + static_cast<long>(outcomes[1].pcm.size())),
            outcomes[1].pcm);
}

// ---- Callbacks --------------------------------------------------------------------------------

/// A DSF file of 1 GiB of zeros that takes no room: minutes of work that a test breaks off.
class EndlessFile {
 public:
  EndlessFile() {
    const std::uint64_t bytes = std::uint64_t{1} << 30;
    DsfOptions options;
    options.sample_count = bytes / 2 * 8;
    file_.Write(DsfFile(2, kDsd64, {}, options));
    EXPECT_EQ(truncate(file_.path(), static_cast<off_t>(bytes)), 0);
  }
  const char* path() const { return file_.path(); }

 private:
  TempFile file_;
};

TEST(DsdToPcm, ProgressRisesAndCancelEndsAtOnce) {
  struct Host {
    std::vector<int> percents;
    static bool Report(int percent, void* data) {
      auto& percents = static_cast<Host*>(data)->percents;
      percents.push_back(percent);
      return percents.size() < 2;
    }
  };
  const EndlessFile file;
  Host host;
  const auto start = std::chrono::steady_clock::now();
  const Outcome outcome = Convert(file.path(), 352800, 16, false, Host::Report, &host);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60));
  EXPECT_EQ(outcome.result, -1);
  EXPECT_FALSE(outcome.pcm.empty());
  ASSERT_EQ(host.percents.size(), 2u);
  EXPECT_GE(host.percents[0], 0);
  EXPECT_LT(host.percents[0], host.percents[1]);
  EXPECT_LT(host.percents[1], 100);
}

TEST(DsdToPcm, ShortConversionEndsBeforeTheFirstPoll) {
  const TempFile file(DsfFile(2, kDsd64, Payload(2, 100)));
  const auto refuse = [](int, void*) { return false; };
  EXPECT_EQ(Convert(file.path(), 88200, 24, false, refuse).result, 0);
}

// ---- Arguments and hostile files --------------------------------------------------------------

TEST(DsdToPcm, ArgumentsOutOfRangeFailBeforeAnythingIsWritten) {
  const TempFile file(DsfFile(2, kDsd64, Payload(2, 4096)));
  const Outcome failed{-1, {}};
  EXPECT_EQ(Convert("/nonexistent/file.dsf"), failed);
  EXPECT_EQ(Convert("/"), failed);
  EXPECT_EQ(DSDtoPCM(nullptr, stdout, nullptr, nullptr, 0, 0, 44100, 16, false), -1);
  EXPECT_EQ(DSDtoPCM(file.path(), nullptr, nullptr, nullptr, 0, 0, 44100, 16, false), -1);
  for (int rate : {0, -44100, 1, static_cast<int>(kDsd64) + 1, 2147483647})
    EXPECT_EQ(Convert(file.path(), rate), failed) << rate;
  for (int bits : {0, -8, 12, 20, 40}) EXPECT_EQ(Convert(file.path(), 44100, bits), failed) << bits;
}

TEST(DsdToPcm, MalformedHeadersEndInTheirFailureValue) {
  const Bytes sound = Payload(2, 4096);
  struct Row {
    const char* fault;
    Bytes file;
    int result;
  };
  std::vector<Row> rows;
  const auto dsf = [&](const char* fault, int result, std::uint32_t rate, auto change) {
    DsfOptions options;
    change(options);
    rows.push_back({fault, DsfFile(2, rate, sound, options), result});
  };
  dsf("no channels", -1, kDsd64, [](auto& o) { o.stated_channels = 0; });
  dsf("nine channels", -1, kDsd64, [](auto& o) { o.stated_channels = 9; });
  dsf("200 channels", -1, kDsd64, [](auto& o) { o.stated_channels = 200; });
  dsf("2^31 channels", -1, kDsd64, [](auto& o) { o.stated_channels = 1u << 31; });
  dsf("rate of 0", -1, 0, [](auto&) {});
  dsf("rate above 98.304 MHz", -1, 98304001, [](auto&) {});
  dsf("rate of 2^31", -1, 1u << 31, [](auto&) {});
  dsf("block size of 0", -1, kDsd64, [](auto& o) { o.stated_block_bytes = 0; });
  dsf("block size of 2 GiB", -1, kDsd64, [](auto& o) { o.stated_block_bytes = 1u << 31; });
  dsf("negative format size", 0, kDsd64, [](auto& o) { o.before_fmt = corvin::testing::DsfChunk("junk", {}, ~0ull); });
  dsf("chunk past the end", 0, kDsd64, [](auto& o) { o.before_fmt = corvin::testing::DsfChunk("junk", {}, 1ull << 40); });
  dsf("chunk of 2^63", 0, kDsd64, [](auto& o) { o.before_fmt = corvin::testing::DsfChunk("junk", {}, 1ull << 63); });
  dsf("data before its format", 0, kDsd64, [](auto& o) { o.before_fmt = corvin::testing::DsfChunk("data", Bytes(64)); });

  const auto dsdiff = [&](const char* fault, int result, std::uint32_t rate, auto change) {
    DsdiffOptions options;
    change(options);
    rows.push_back({fault, DsdiffFile(2, rate, sound, options), result});
  };
  dsdiff("DSDIFF without compression type", 0, kDsd64, [](auto& o) { o.compression_chunk = false; });
  dsdiff("compressed DSDIFF", 0, kDsd64, [](auto& o) { o.compression_type = "DST "; });
  rows.push_back({"DSDIFF without channels", DsdiffFile(0, kDsd64, sound), -1});
  rows.push_back({"DSDIFF of 200 channels", DsdiffFile(200, kDsd64, sound), -1});
  dsdiff("DSDIFF channels past the end", 0, kDsd64, [](auto& o) { o.stated_channels = 65535; });
  dsdiff("DSDIFF rate of 0", -1, 0, [](auto&) {});
  dsdiff("DSDIFF sound past the end", 0, kDsd64, [](auto& o) { o.sound_size = 1 << 20; });
  dsdiff("DSDIFF sound of -1", 0, kDsd64, [](auto& o) { o.sound_size = ~0ull; });
  dsdiff("DSDIFF properties of -1", 0, kDsd64, [](auto& o) { o.properties_size = ~0ull; });
  dsdiff("DSDIFF properties past the end", 0, kDsd64, [](auto& o) { o.properties_size = 1 << 20; });
  dsdiff("DSDIFF sub-chunk past its chunk", 0, kDsd64, [](auto& o) { o.properties_first = corvin::testing::DsdiffChunk("ABSS", {}, 5000); });
  dsdiff("DSDIFF compression size of 2", 0, kDsd64, [](auto& o) { o.compression_size = 2; });

  const auto one_bit = [&](const char* fault, int result, std::uint32_t rate, auto change) {
    OneBitOptions options;
    change(options);
    rows.push_back({fault, OneBitFile(2, rate, sound, options), result});
  };
  one_bit("1bit without channels", -1, kDsd64, [](auto& o) { o.stated_channels = 0; });
  one_bit("1bit of 200 channels", -1, kDsd64, [](auto& o) { o.stated_channels = 200; });
  one_bit("1bit rate of 0", -1, 0, [](auto&) {});
  one_bit("1bit data past the end", 0, kDsd64, [](auto& o) { o.stated_data_offset = 1u << 31; });
  one_bit("1bit ends before its data", 0, kDsd64, [](auto& o) { o.file_size = 100; });
  rows.push_back({"empty file", {}, 0});
  rows.push_back({"text", Bytes(1000, 'x'), 0});

  for (const Row& row : rows) {
    const Outcome outcome = Convert(row.file);
    EXPECT_EQ(outcome.result, row.result) << row.fault;
    EXPECT_TRUE(outcome.pcm.empty()) << row.fault;
  }
}

TEST(DsdToPcm, OddButSoundHeadersAreRead) {
  const Bytes sound = Payload(2, 4096);
  std::vector<Bytes> files = {DsdiffFile(2, kDsd64, sound)};
  for (const char* name : {"", "DSD uncomp.", "not compressed "}) {  // names of 0, 11 and 15 bytes
    DsdiffOptions options;
    options.compression_name = name;
    files.push_back(DsdiffFile(2, kDsd64, sound, options));
  }
  DsdiffOptions stereo_sizes;  // as our own writer leaves them whatever the channels
  stereo_sizes.channels_size = 6;
  stereo_sizes.properties_size = 70;
  files.push_back(DsdiffFile(2, kDsd64, sound, stereo_sizes));
  OneBitOptions endless;
  endless.file_size = ~0ull;
  files.push_back(OneBitFile(2, kDsd64, sound, endless));
  const auto outcomes = ConvertAll(files);
  EXPECT_FALSE(outcomes[0].pcm.empty());
  for (std::size_t i = 1; i < outcomes.size(); ++i) EXPECT_EQ(outcomes[i], outcomes[0]) << i;
}

TEST(SoundSearch, CutAnywhereFindsNothingBeyondTheFile) {
  const Bytes sound = Payload(2, 64);
  for (const Bytes& file :
       {DsfFile(2, kDsd64, sound), DsdiffFile(2, kDsd64, sound), OneBitFile(2, kDsd64, sound)}) {
    for (std::size_t length = 0; length < std::min<std::size_t>(file.size(), 2300); ++length) {
      const TempFile temp(Bytes(file.begin(), file.begin() + static_cast<long>(length)));
      const auto stream = corvin::formats::OpenInputFile(temp.path());
      SoundSearch search(stream.get());
      int found = 0;
      while (const auto next = search.Next()) {
        ++found;
        ASSERT_EQ(next->channels, 2u);
        if (!next->dsf) {
          ASSERT_LE(next->bytes, length);
        }
      }
      ASSERT_LE(found, 1);
    }
  }
}

// ---- Many at once, and too many ---------------------------------------------------------------

TEST(DsdToPcm, ConversionsAtOnceGiveTheirOwnBytes) {
  const Bytes payload = Payload(2, 20011);
  const TempFile dsd64(DsfFile(2, kDsd64, payload));
  const TempFile dsd128(DsdiffFile(2, 5644800, payload));
  const TempFile dsd64_48(OneBitFile(1, 3072000, payload));
  struct Job {
    const char* path;
    int rate;
    int bits;
  };
  const Job jobs[] = {{dsd64.path(), 44100, 24},    {dsd64.path(), 48000, 16},
                      {dsd128.path(), 88200, 24},   {dsd128.path(), 192000, 32},
                      {dsd64_48.path(), 96000, 16}, {dsd64_48.path(), 44100, 24},
                      {dsd64.path(), 32000, 16},    {dsd128.path(), 352800, 8}};
  std::vector<Outcome> alone;
  for (const Job& job : jobs) alone.push_back(Convert(job.path, job.rate, job.bits));
  for (int round = 0; round < 2; ++round) {
    std::vector<std::future<Outcome>> running;
    for (const Job& job : jobs)
      for (int copy = 0; copy < 2; ++copy)
        running.push_back(std::async(std::launch::async,
                                     [job] { return Convert(job.path, job.rate, job.bits); }));
    for (std::size_t i = 0; i < running.size(); ++i) EXPECT_EQ(running[i].get(), alone[i / 2]) << i;
  }
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
/// Converts in a process of its own with `megabytes` of address space to spare; 0 or 1 for a result
/// of 0 or -1.
int ConvertWithin(const char* path, int megabytes) {
  alarm(60);
  std::FILE* const statm = std::fopen("/proc/self/statm", "r");
  unsigned long pages = 0;
  if (!statm || std::fscanf(statm, "%lu", &pages) != 1) return 99;
  const rlim_t space =
      pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + (static_cast<rlim_t>(megabytes) << 20);
  const rlimit limit{space, space};
  if (setrlimit(RLIMIT_AS, &limit) != 0) return 99;
  std::FILE* const out = std::fopen("/dev/null", "wb");
  const int result = DSDtoPCM(path, out, nullptr, nullptr, 0, 0, 44100, 16, false);
  return result == 0 ? 0 : result == -1 ? 1 : 98;
}

// With less and less address space, threads and memory are refused at every point of building a
// job: it ends with -1, and never hangs with half a pipeline.
TEST(DsdToPcm, RefusedThreadsAndMemoryEndInFailure) {
  const TempFile file(DsfFile(6, kDsd64, Payload(6, 4096)));
  std::map<pid_t, int> children;
  for (int megabytes = 4; megabytes <= 400; megabytes += 12) {
    const pid_t child = fork();
    if (child == 0) _exit(ConvertWithin(file.path(), megabytes));
    children[child] = megabytes;
  }
  std::map<int, int> results;
  for (const auto& [child, megabytes] : children) {
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFEXITED(status)) << "signal " << WTERMSIG(status) << " with " << megabytes
                                   << " MiB";
    ++results[WEXITSTATUS(status)];
  }
  EXPECT_GT(results[0], 0);
  EXPECT_GT(results[1], 5);
  EXPECT_EQ(results.size(), 2u);
}
#endif

}  // namespace

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
#include <map>
#include <vector>

#include "classic/files/sound_search.h"
#include "corvin.h"
#include "formats/bytes/input_file.h"
#include "tests/support/at_once.h"
#include "tests/support/dsd_files.h"
#include "tests/support/dsd_signals.h"
#include "tests/support/temp_file.h"

namespace {

using namespace corvin::testing;

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
  const StreamPointer out(std::tmpfile());
  const int result = DSDtoPCM(path, out.get(), progress, data, 0, 0, pcm_rate, bits, big_endian);
  return {result, ReadBack(out.get())};
}

Outcome Convert(const Bytes& file, int pcm_rate = 88200, int bits = 24) {
  const TempFile temp(file);
  return Convert(temp.path(), pcm_rate, bits);
}

/// Converts every file at the same time.
std::vector<Outcome> ConvertAll(const std::vector<Bytes>& files) {
  std::vector<std::function<Outcome()>> calls;
  for (const Bytes& file : files) calls.push_back([&file] { return Convert(file); });
  return AtOnce(calls);
}

Bytes Payload(int channels, std::size_t frames) {
  std::vector<Bytes> packed;
  for (int c = 0; c < channels; ++c)
    packed.push_back(PackBits(RandomBits(8 * frames, static_cast<std::uint64_t>(c) + 5), false));
  return Interleave(packed);
}

// Bit order, block layout and block size of a container do not change what is heard. Only the
// silence behind the end differs, by its bit order, and there only in the last samples.
TEST(DsdToPcm, ContainersGiveTheSameSound) {
  for (int channels : {1, 2, 6}) {
    const Bytes payload = Payload(channels, 50021);
    const auto count = static_cast<std::uint32_t>(channels);
    std::vector<Bytes> files = {DsdiffFile(static_cast<std::uint16_t>(channels), kDsd64, payload),
                                OneBitFile(static_cast<std::uint8_t>(channels), kDsd64, payload)};
    for (std::uint32_t block : {1u, 512u, 4096u, 100000u})
      files.push_back(DsfFile(count, kDsd64, payload, {.block_bytes = block}));
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
  const auto refused = [&](char* in, int bytes, int dsd_rate, int pcm_rate, int bits) {
    RTBufDSDtoPCM(in, bytes, dsd_rate, reinterpret_cast<char*>(pcm.data()), pcm_rate, bits);
  };
  char* const in = reinterpret_cast<char*>(halves.data());
  refused(in, 0, kDsd64, 44100, 16);
  refused(in, -1, kDsd64, 44100, 16);
  refused(in, 16, 0, 44100, 16);
  refused(in, 16, kDsd64, 0, 16);
  refused(in, 16, kDsd64, 44100, 17);
  refused(nullptr, 16, kDsd64, 44100, 16);
  EXPECT_EQ(pcm, Bytes(16, 0xEE));
}

TEST(DsdToPcm, EveryDataChunkIsConvertedInTurn) {
  const Bytes payload = Payload(2, 4096);
  const Bytes one = DsfFile(2, kDsd64, payload);
  Bytes two = one;
  Append(two, Bytes(one.end() - (12 + 2 * 4096), one.end()));
  Bytes unknown = two;
  unknown.erase(unknown.begin() + 4, unknown.begin() + 28);  // no rest of the first chunk
  unknown[0] = 'X';
  const Bytes other = DsfChunk("xtra", Bytes(20));  // whose size counts its header
  const auto outcomes =
      ConvertAll({one, two, unknown,
                  DsfFile(2, kDsd64, payload, {.before_fmt = other, .before_data = other})});
  EXPECT_EQ(outcomes[3], outcomes[0]);
  Bytes twice = outcomes[0].pcm;
  Append(twice, outcomes[0].pcm);
  EXPECT_EQ(outcomes[1].pcm, twice);
  EXPECT_EQ(outcomes[2].pcm, twice);
}

TEST(DsdToPcm, MissingSoundOfACutDsfIsSilenceToTheEndOfItsGroup) {
  const Bytes payload = Payload(2, 3 * 4096);
  const Bytes whole = DsfFile(2, kDsd64, payload);
  const Bytes cut(whole.begin(), whole.begin() + 92 + 2 * 4096 + 4096 + 100);
  Bytes padded = cut;
  padded.resize(92 + 4 * 4096, 0x69);
  padded[66] = 1;  // which states the samples that it has, 65536
  padded[65] = 0;
  const auto outcomes = ConvertAll({cut, padded});
  EXPECT_EQ(outcomes[0].result, 0);
  EXPECT_EQ(outcomes[0], outcomes[1]);
}

// As after a broken download, or a conversion of our own that was cancelled: the headers promise
// more. Within a group of one byte of each channel the rest is left out.
TEST(DsdToPcm, CutDsdiffIsConvertedAsFarAsItGoes) {
  const Bytes sound = Payload(2, 30000);
  const auto length = static_cast<std::uint64_t>(sound.size());
  std::vector<Bytes> files;
  for (const long bytes : {0L, 2L, 20002L, 40000L}) {
    const Bytes there(sound.begin(), sound.begin() + bytes);
    files.push_back(DsdiffFile(2, kDsd64, there));
    files.push_back(DsdiffFile(2, kDsd64, there, {.sound_size = length}));
    Bytes and_one = DsdiffFile(2, kDsd64, sound);
    and_one.resize(files.back().size() + 1);
    files.push_back(and_one);
  }
  files.push_back(DsdiffFile(2, kDsd64, sound));
  files.push_back(DsdiffFile(2, kDsd64, sound, {.sound_size = std::uint64_t{1} << 62}));
  const auto outcomes = ConvertAll(files);
  for (std::size_t i = 0; i + 2 < files.size(); i += 3) {
    EXPECT_EQ(outcomes[i].result, 0);
    EXPECT_EQ(outcomes[i + 1], outcomes[i]) << i;
    EXPECT_EQ(outcomes[i + 2], outcomes[i]) << i;
  }
  EXPECT_EQ(outcomes[6].pcm.size(), 6 * (10001u * 8 / 32));
  EXPECT_EQ(outcomes[13], outcomes[12]);
}

// ---- Callbacks --------------------------------------------------------------------------------

/// A DSF file of 256 MiB of zeros that takes no room: more work than a test waits for.
class EndlessFile {
 public:
  EndlessFile() {
    const std::uint64_t bytes = std::uint64_t{1} << 28;
    file_.Write(DsfFile(2, kDsd64, {}, {.sample_count = bytes / 2 * 8}));
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
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(200));
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
  const auto dsf = [&](const DsfOptions& options, std::uint32_t rate = kDsd64) {
    return DsfFile(2, rate, sound, options);
  };
  const auto dsdiff = [&](const DsdiffOptions& options, std::uint32_t rate = kDsd64) {
    return DsdiffFile(2, rate, sound, options);
  };
  const auto one_bit = [&](const OneBitOptions& options, std::uint32_t rate = kDsd64) {
    return OneBitFile(2, rate, sound, options);
  };
  const Row rows[] = {
      {"no channels", dsf({.stated_channels = 0}), -1},
      {"nine channels", dsf({.stated_channels = 9}), -1},
      {"2^31 channels", dsf({.stated_channels = 1u << 31}), -1},
      {"rate of 0", dsf({}, 0), -1},
      {"rate above 98.304 MHz", dsf({}, 98304001), -1},
      {"rate of 2^31", dsf({}, 1u << 31), -1},
      {"block size of 0", dsf({.stated_block_bytes = 0}), -1},
      {"block size of 2 GiB", dsf({.stated_block_bytes = 1u << 31}), -1},
      {"chunk of -1", dsf({.before_fmt = DsfChunk("junk", {}, ~0ull)}), 0},
      {"chunk past the end", dsf({.before_fmt = DsfChunk("junk", {}, 1ull << 40)}), 0},
      {"data before its format", dsf({.before_fmt = DsfChunk("data", Bytes(64))}), 0},
      {"DSDIFF without compression type", dsdiff({.compression_chunk = false}), 0},
      {"compressed DSDIFF", dsdiff({.compression_type = "DST "}), 0},
      {"DSDIFF without channels", DsdiffFile(0, kDsd64, sound), -1},
      {"DSDIFF of 200 channels", DsdiffFile(200, kDsd64, sound), -1},
      {"DSDIFF channels past the end", dsdiff({.stated_channels = 65535}), 0},
      {"DSDIFF rate of 0", dsdiff({}, 0), -1},
      {"DSDIFF properties of -1", dsdiff({.properties_size = ~0ull}), 0},
      {"DSDIFF properties past the end", dsdiff({.properties_size = 1 << 20}), 0},
      {"DSDIFF sub-chunk past its chunk",
       dsdiff({.properties_first = DsdiffChunk("ABSS", {}, 5000)}), 0},
      {"1bit without channels", one_bit({.stated_channels = 0}), -1},
      {"1bit of 200 channels", one_bit({.stated_channels = 200}), -1},
      {"1bit rate of 0", one_bit({}, 0), -1},
      {"1bit data past the end", one_bit({.stated_data_offset = 1u << 31}), 0},
      {"1bit ends before its data", one_bit({.file_size = 100}), 0},
      {"empty file", {}, 0},
      {"text", Bytes(1000, 'x'), 0},
  };
  for (const Row& row : rows) {
    const Outcome outcome = Convert(row.file);
    EXPECT_EQ(outcome.result, row.result) << row.fault;
    EXPECT_TRUE(outcome.pcm.empty()) << row.fault;
  }
}

TEST(DsdToPcm, OddButSoundHeadersAreRead) {
  const Bytes sound = Payload(2, 4096);
  std::vector<Bytes> files = {
      DsdiffFile(2, kDsd64, sound),
      // Sizes as our own writer leaves them whatever the channels.
      DsdiffFile(2, kDsd64, sound, {.channels_size = 6, .properties_size = 70}),
      OneBitFile(2, kDsd64, sound, {.file_size = ~0ull})};
  for (const char* name : {"", "DSD uncomp.", "not compressed "})  // of 0, 11 and 15 bytes
    files.push_back(DsdiffFile(2, kDsd64, sound, {.compression_name = name}));
  const Bytes start = DsdiffChunk("ABSS", Bytes(8));
  const auto named = [&](const DsdiffOptions& options) {
    files.push_back(DsdiffFile(2, kDsd64, sound, options));
  };
  // A pad byte that the size leaves out, in front of a sub-chunk and at the end of the properties;
  // a size that leaves out the whole name; a length of the name that lies.
  named({.compression_size = 19, .properties_last = start});
  named({.compression_size = 19, .before_sound = start});
  named({.compression_size = 2});
  named({.name_length = 200});
  // No pad byte at all.
  Bytes unpadded = DsdiffFile(2, kDsd64, sound, {.compression_size = 19, .properties_size = 73});
  const auto sound_chunk = unpadded.end() - static_cast<long>(sound.size()) - 12;
  unpadded.erase(sound_chunk - 1);
  files.push_back(unpadded);
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
  const TempFile dsd64(DsfFile(2, kDsd64, Payload(2, 20011)));
  const TempFile dsd128(DsdiffFile(2, 5644800, Payload(2, 20011)));
  const std::function<Outcome()> jobs[] = {[&] { return Convert(dsd64.path(), 44100, 24); },
                                           [&] { return Convert(dsd64.path(), 48000, 16); },
                                           [&] { return Convert(dsd128.path(), 192000, 32); },
                                           [&] { return Convert(dsd64.path(), 32000, 16); }};
  std::vector<std::function<Outcome()>> calls;
  std::vector<Outcome> alone;
  for (const auto& job : jobs) {
    calls.insert(calls.end(), 4, job);
    alone.insert(alone.end(), 4, job());
  }
  EXPECT_EQ(AtOnce(calls), alone);
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
    ASSERT_TRUE(WIFEXITED(status))
        << "signal " << WTERMSIG(status) << " with " << megabytes << " MiB";
    ++results[WEXITSTATUS(status)];
  }
  EXPECT_GT(results[0], 0);
  EXPECT_GT(results[1], 5);
  EXPECT_EQ(results.size(), 2u);
}
#endif

}  // namespace

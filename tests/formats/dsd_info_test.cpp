// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstring>
#include <functional>
#include <string>

#include "corvin.h"
#include "tests/support/dsd_files.h"
#include "tests/support/temp_file.h"

namespace {

using namespace corvin::testing;

/// The fields that the query always sets; the record is dirty before.
struct Answer {
  std::uint32_t format, channels, rate, bits;
  std::uint64_t samples;
  std::uint32_t block;
  bool operator==(const Answer&) const = default;
};

void PrintTo(const Answer& a, std::ostream* os) {
  *os << "{kind " << a.format << ", " << a.channels << " ch, " << a.rate << " Hz, " << a.bits
      << " bits, " << a.samples << " samples, block " << a.block << "}";
}

DSD_INFO QueryRecord(const char* path, std::uint32_t format, int expected) {
  DSD_INFO info;
  std::memset(&info, 0xee, sizeof info);
  info.format = format;
  EXPECT_EQ(DSDInfo(path, &info), expected);
  return info;
}

Answer Query(const Bytes& bytes, std::uint32_t format = 0) {
  const TempFile file(bytes);
  const DSD_INFO i = QueryRecord(file.path(), format, 0);
  return {i.format,        i.channels,    i.samplingFrequency,
          i.bitsPerSample, i.sampleCount, i.blockSizePerChannel};
}

constexpr std::uint32_t kRate = 5644800;

TEST(DsdInfo, ReadsEachKind) {
  const Bytes payload(6000, 0x69);
  EXPECT_EQ(Query(DsdiffFile(2, kRate, payload)), (Answer{1, 2, kRate, 1, 24000, 4096}));
  EXPECT_EQ(Query(DsfFile(2, kRate, payload)), (Answer{2, 2, kRate, 1, 24000, 4096}));
  EXPECT_EQ(Query(OneBitFile(2, kRate, payload)), (Answer{3, 2, kRate, 1, 24000, 4096}));
  EXPECT_EQ(Query(DsfFile(6, kRate, payload, {.block_bytes = 512, .bits_per_sample = 8})),
            (Answer{2, 6, kRate, 8, 8000, 512}));
}

TEST(DsdInfo, FilesThatAreNoDsdFiles) {
  const Answer nothing{7, 0, 0, 0, 0, 4096};
  EXPECT_EQ(Query({}, 7), nothing);
  EXPECT_EQ(Query({'D', 'S', 'D'}, 7), nothing);
  EXPECT_EQ(Query(Bytes(500, 'x'), 7), nothing);

  const TempFile absent;
  const auto refused = [&](const char* path) {
    const DSD_INFO info = QueryRecord(path, 7, -1);
    EXPECT_EQ(info.format, 7u);
    EXPECT_EQ(info.channels + info.samplingFrequency + info.bitsPerSample + info.sampleCount, 0u);
    EXPECT_EQ(info.compressionName[0], 0);
    EXPECT_EQ(info.compressionName[1], '\xee');
    EXPECT_EQ(info.blockSizePerChannel, 4096u);
  };
  refused(absent.path());
  refused(::testing::TempDir().c_str());
  ASSERT_EQ(mkfifo(absent.path(), 0600), 0);
  refused(absent.path());  // without waiting for a writer
}

// Hosts may rely on a damaged first word being made good by the record.
TEST(DsdInfo, UnknownFirstWordIsReadAsTheKindInTheRecord) {
  const Bytes payload(800, 0x69);
  Bytes file = OneBitFile(2, kRate, payload);
  file[0] = '?';
  EXPECT_EQ(Query(file, 3), (Answer{3, 2, kRate, 1, 3200, 4096}));
  // From the fifth byte on: the form header is then a chunk to skip.
  Bytes chunks{'?', '?', '?', '?'};
  Append(chunks, DsdiffFile(2, kRate, payload)).erase(chunks.begin() + 4, chunks.begin() + 20);
  EXPECT_EQ(Query(chunks, 1), (Answer{1, 2, kRate, 1, 3200, 4096}));
}

TEST(DsdInfo, DsfChunkBeforeTheFormatIsSkippedByItsSizeFromTheHeadersEnd) {
  const Bytes payload(800, 0x69);
  // A size that counts the header overshoots by 12 bytes, right into the next chunk...
  EXPECT_EQ(Query(DsfFile(2, kRate, payload, {.before_fmt = DsfChunk("xtra", Bytes(20))})).channels,
            0u);
  // ... and one that does not count it leads to the format.
  EXPECT_EQ(
      Query(DsfFile(2, kRate, payload, {.before_fmt = DsfChunk("xtra", Bytes(20), 20)})).channels,
      2u);
}

TEST(DsdInfo, DsdiffCompressionTypeNamesTheSoundChunk) {
  const Bytes payload(1411200 / 8, 0x69);
  EXPECT_EQ(Query(DsdiffFile(2, kRate, payload, {.compression_type = "DST "})).samples,
            5644800u / 8);
  EXPECT_EQ(Query(DsdiffFile(2, kRate, payload, {.compression_chunk = false})).samples, 0u);
  // An id of four zero bytes is no sound chunk before a compression type is known.
  EXPECT_EQ(
      Query(DsdiffFile(2, kRate, payload,
                       {.compression_chunk = false, .compression_type = std::string(4, '\0')}))
          .samples,
      0u);
}

TEST(DsdInfo, DsdiffCompressionNames) {
  const Bytes payload(800, 0x69);
  // 11 and 15 need no pad byte, 14 does; 255 is the longest.
  for (const std::size_t length : {0, 1, 11, 14, 15, 254, 255}) {
    const std::string name(length, 'n');
    const TempFile file(DsdiffFile(2, kRate, payload, {.compression_name = name}));
    const DSD_INFO info = QueryRecord(file.path(), 0, 0);
    EXPECT_EQ(info.sampleCount, 3200u) << length;
    EXPECT_EQ(std::string(info.compressionName, length), name);
    EXPECT_EQ(info.compressionName[length], length == 0 ? '\0' : '\xee') << "terminated";
  }
  // A size that does not count the pad byte, and one that reaches further than the name.
  EXPECT_EQ(Query(DsdiffFile(2, kRate, payload, {.compression_size = 19})).samples, 3200u);
  EXPECT_EQ(Query(DsdiffFile(2, kRate, payload, {.name_length = 3})).samples, 3200u);
}

// The sizes that this library's own encoder states are those of a stereo file.
TEST(DsdInfo, DsdiffPropertySizesOfAStereoFile) {
  for (const int count : {1, 2, 6}) {
    const auto channels = static_cast<std::uint16_t>(count);
    const DsdiffOptions options{.channels_size = 10,
                                .properties_size = 94,
                                .properties_last = DsdiffChunk("ABSS", Bytes(8))};
    EXPECT_EQ(Query(DsdiffFile(channels, kRate, Bytes(channels * 100), options)),
              (Answer{1, channels, kRate, 1, 800, 4096}));
  }
}

TEST(DsdInfo, DsdiffOddTables) {
  struct Row {
    const char* what;
    DsdiffOptions options;
    std::uint32_t channels;
    std::uint64_t samples;
  };
  const Bytes note = DsdiffChunk("NOTE", Bytes(30));
  const std::uint64_t huge = UINT64_MAX / 8 + 1;
  const Row rows[] = {
      {"other chunks", {.before_properties = note, .before_sound = note}, 2, 3200},
      {"other sub-chunks", {.properties_first = note, .properties_last = note}, 2, 3200},
      {"properties reach into the sound", {.properties_size = 5000}, 2, 3200},
      {"properties without sub-chunks", {.properties_size = 0}, 0, 0},
      {"negative properties", {.properties_size = UINT64_MAX}, 0, 0},
      {"empty sub-chunk ends the properties", {.properties_first = DsdiffChunk("NOTE", {})}, 0, 0},
      {"known sub-chunk past the properties ends them", {.channels_size = 5000}, 2, 0},
      {"sub-chunk past the properties",
       {.properties_last = DsdiffChunk("NOTE", Bytes(9), 9000)},
       2,
       0},
      {"negative sub-chunk", {.properties_last = DsdiffChunk("NOTE", {}, UINT64_MAX - 11)}, 2, 0},
      {"chunk past the end", {.before_sound = DsdiffChunk("NOTE", {}, 9000)}, 2, 0},
      {"negative chunk", {.before_sound = DsdiffChunk("NOTE", {}, UINT64_MAX - 11)}, 2, 0},
      {"largest chunk", {.before_sound = DsdiffChunk("NOTE", {}, INT64_MAX)}, 2, 0},
      {"no channels", {.stated_channels = 0, .properties_last = note}, 0, 0},
      {"more channels than ids", {.stated_channels = 65535}, 65535, 0},
      {"sound past the end counts as stated", {.sound_size = 1411200}, 2, 5644800},
      {"sound that cannot be counted", {.sound_size = huge}, 2, 0},
      {"negative sound", {.sound_size = UINT64_MAX - 11}, 2, 0},
  };
  for (const Row& row : rows) {
    const Answer answer = Query(DsdiffFile(2, kRate, Bytes(800, 0x69), row.options));
    EXPECT_EQ(answer.channels, row.channels) << row.what;
    EXPECT_EQ(answer.samples, row.samples) << row.what;
  }
  // Without a channel count the length is that of all channels together.
  EXPECT_EQ(Query(DsdiffFile(0, kRate, Bytes(800, 0x69))).samples, 6400u);
  EXPECT_EQ(Query(DsdiffFile(200, 0, Bytes(800, 0x69))), (Answer{1, 200, 0, 1, 32, 4096}));
}

TEST(DsdInfo, OneBitLengths) {
  struct Row {
    std::uint8_t channels;
    OneBitOptions options;
    std::uint64_t samples;
  };
  const Row rows[] = {
      {1, {}, 4800},
      {2, {}, 2400},
      {3, {}, 1200},  // 8 / 3 is taken as 2
      {8, {}, 600},
      {9, {}, 0},
      {0, {}, 0},
      {2, {.file_size = 10}, 0},
      {2, {.file_size = (1ull << 32) + 2048}, 4ull << 32},  // low word first
      {2, {.stated_data_offset = UINT32_MAX}, 0},
  };
  for (const Row& row : rows) {
    const Answer answer = Query(OneBitFile(row.channels, kRate, Bytes(600), row.options));
    EXPECT_EQ(answer, (Answer{3, row.channels, kRate, 1, row.samples, 4096}));
  }
}

// Whatever is missing, the query ends at once and tells nothing that the whole file does not.
TEST(DsdInfo, CutAtEveryByte) {
  for (const Bytes& whole :
       {DsdiffFile(2, kRate, Bytes(10)), DsfFile(2, kRate, Bytes(10), {.block_bytes = 16}),
        OneBitFile(2, kRate, Bytes(10), {.data_offset = 140})}) {
    const Answer full = Query(whole);
    for (std::size_t length = 0; length < whole.size(); ++length) {
      const Answer part = Query(Bytes(whole.begin(), whole.begin() + length));
      EXPECT_EQ(part.format, length < 4 ? 0 : full.format);
      EXPECT_TRUE(part.channels == 0 || part.channels == full.channels) << length;
      EXPECT_TRUE(part.rate == 0 || part.rate == full.rate) << length;
      EXPECT_TRUE(part.samples == 0 || part.samples == full.samples) << length;
    }
  }
}

}  // namespace

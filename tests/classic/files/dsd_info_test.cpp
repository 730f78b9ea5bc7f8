// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstring>
#include <string>

#include "corvin.h"
#include "tests/support/dsd_files.h"
#include "tests/support/temp_file.h"

namespace {

using namespace corvin::testing;

/// The fields that the query always sets.
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

/// The record is dirty before.
Answer QueryPath(const char* path, std::uint32_t format, int result) {
  DSD_INFO i;
  std::memset(&i, 0xee, sizeof i);
  i.format = format;
  EXPECT_EQ(DSDInfo(path, &i), result);
  return {i.format,        i.channels,    i.samplingFrequency,
          i.bitsPerSample, i.sampleCount, i.blockSizePerChannel};
}

Answer Query(const Bytes& bytes, std::uint32_t format = 0) {
  return QueryPath(TempFile(bytes).path(), format, 0);
}

constexpr std::uint32_t kRate = 5644800;
const Bytes kSound(800, 0x69);

Bytes Dsdiff(const DsdiffOptions& options, std::uint16_t channels = 2) {
  return DsdiffFile(channels, kRate, kSound, options);
}

TEST(DsdInfo, ReadsEachKind) {
  EXPECT_EQ(Query(Dsdiff({})), (Answer{1, 2, kRate, 1, 3200, 4096}));
  EXPECT_EQ(Query(OneBitFile(2, kRate, kSound)), (Answer{3, 2, kRate, 1, 3200, 4096}));
  EXPECT_EQ(Query(DsfFile(6, kRate, kSound, {.block_bytes = 512, .bits_per_sample = 8})),
            (Answer{2, 6, kRate, 8, 1064, 512}));
}

TEST(DsdInfo, WhatIsNoDsdFileLeavesTheKindAndNoFigures) {
  const Answer nothing{7, 0, 0, 0, 0, 4096};
  for (const Bytes& bytes : {Bytes{}, Bytes{'D', 'S', 'D'}, Bytes(500, 'x')})
    EXPECT_EQ(Query(bytes, 7), nothing);
  const TempFile absent;
  EXPECT_EQ(QueryPath(absent.path(), 7, -1), nothing);
  EXPECT_EQ(QueryPath(::testing::TempDir().c_str(), 7, -1), nothing);
  ASSERT_EQ(mkfifo(absent.path(), 0600), 0);
  EXPECT_EQ(QueryPath(absent.path(), 7, -1), nothing) << "without waiting for a writer";
  EXPECT_EQ(QueryPath(nullptr, 7, -1), nothing);
  EXPECT_EQ(DSDInfo(TempFile(Dsdiff({})).path(), nullptr), -1);
}

// Hosts may rely on a damaged first word being made good by the record.
TEST(DsdInfo, UnknownFirstWordIsReadAsTheKindInTheRecord) {
  Bytes file = OneBitFile(2, kRate, kSound);
  file[0] = '?';
  EXPECT_EQ(Query(file, 3), (Answer{3, 2, kRate, 1, 3200, 4096}));
  // From the fifth byte on: the form header is then a chunk to skip.
  Bytes chunks{'?', '?', '?', '?'};
  Append(chunks, Dsdiff({})).erase(chunks.begin() + 4, chunks.begin() + 20);
  EXPECT_EQ(Query(chunks, 1), (Answer{1, 2, kRate, 1, 3200, 4096}));
}

TEST(DsdInfo, CompressionNamesComeWithoutATerminator) {
  // 14 needs a pad byte; 255 is the longest.
  for (const std::size_t length : {0, 14, 15, 255}) {
    const std::string name(length, 'n');
    DSD_INFO info;
    std::memset(&info, 0xee, sizeof info);
    EXPECT_EQ(DSDInfo(TempFile(Dsdiff({.compression_name = name})).path(), &info), 0);
    EXPECT_EQ(info.sampleCount, 3200u) << length;
    EXPECT_EQ(std::string(info.compressionName, length), name);
    EXPECT_EQ(info.compressionName[length], length == 0 ? '\0' : '\xee');
  }
}

TEST(DsdInfo, OddAndLyingTables) {
  const Bytes note = DsdiffChunk("NOTE", Bytes(30));
  const Bytes stray = DsfChunk("xtra", Bytes(20));
  const Bytes uncounted = DsfChunk("xtra", Bytes(20), 20);
  const std::uint64_t huge = UINT64_MAX / 8 + 101;  // wraps to a length that would do
  const std::string zeros(4, '\0');
  const auto negative = [](int offset) {
    return DsdiffChunk("NOTE", {}, UINT64_MAX - static_cast<unsigned>(offset));
  };
  const auto one_bit = [](std::uint8_t channels, const OneBitOptions& options = {}) {
    return OneBitFile(channels, kRate, kSound, options);
  };
  struct Row {
    const char* what;
    Bytes file;
    std::uint32_t channels;
    std::uint64_t samples;
  };
  const Row rows[] = {
      {"other chunks", Dsdiff({.before_properties = note, .before_sound = note}), 2, 3200},
      {"other sub-chunks", Dsdiff({.properties_first = note, .properties_last = note}), 2, 3200},
      {"stereo sizes, mono", Dsdiff({.channels_size = 10, .properties_size = 94}, 1), 1, 6400},
      {"stereo sizes, 6 channels", Dsdiff({.channels_size = 10, .properties_size = 94}, 6), 6,
       1066},
      // Our own files of more than two channels: the ids are one short, which hides the sound.
      {"ids short of the channels",
       Dsdiff({.stated_channels = 3, .channels_size = 10, .properties_size = 94}), 3, 0},
      {"properties reach into the sound", Dsdiff({.properties_size = 5000}), 2, 3200},
      {"properties without sub-chunks", Dsdiff({.properties_size = 0}), 0, 0},
      {"negative properties", Dsdiff({.properties_size = UINT64_MAX}), 0, 0},
      {"empty sub-chunk ends", Dsdiff({.properties_first = DsdiffChunk("NOTE", {})}), 0, 0},
      {"known sub-chunk past the properties ends them", Dsdiff({.channels_size = 5000}), 2, 0},
      {"negative sub-chunk", Dsdiff({.properties_last = negative(11)}), 2, 0},
      {"chunk past the end", Dsdiff({.before_sound = DsdiffChunk("NOTE", {}, 9000)}), 2, 0},
      {"negative chunk", Dsdiff({.before_sound = negative(11)}), 2, 0},
      {"more channels than the file has bytes", Dsdiff({.stated_channels = 65535}), 65535, 0},
      {"more chunks than any file has", Dsdiff({.before_sound = Bytes(12 << 16)}), 2, 0},
      {"no channels: the length of all together", Dsdiff({}, 0), 0, 6400},
      {"sound past the end counts as stated", Dsdiff({.sound_size = 1411200}), 2, 5644800},
      {"sound that cannot be counted", Dsdiff({.sound_size = huge}), 2, 0},
      {"compression type names the sound", Dsdiff({.compression_type = "DST "}), 2, 3200},
      {"no type, so no sound", Dsdiff({.compression_chunk = false}), 2, 0},
      {"nor one of four zeros", Dsdiff({.compression_chunk = false, .compression_type = zeros}), 2,
       0},
      {"compression size without its pad byte", Dsdiff({.compression_size = 19}), 2, 3200},
      {"compression size beyond the name", Dsdiff({.name_length = 3}), 2, 3200},
      // The size of another DSF chunk is taken from the header's end although it counts the header.
      {"DSF chunk overshot", DsfFile(2, kRate, kSound, {.before_fmt = stray}), 0, 0},
      {"DSF chunk skipped", DsfFile(2, kRate, kSound, {.before_fmt = uncounted}), 2, 3200},
      {"1bit of three channels: 8 / 3 is 2", one_bit(3), 3, 1600},
      {"1bit of nine channels", one_bit(9), 9, 0},
      {"1bit of none", one_bit(0), 0, 0},
      {"1bit low word first", one_bit(2, {.file_size = (1ull << 32) + 2048}), 2, 4ull << 32},
      {"1bit ends before its sound", one_bit(2, {.file_size = 10}), 2, 0},
  };
  for (const Row& row : rows) {
    const Answer answer = Query(row.file);
    EXPECT_EQ(answer.channels, row.channels) << row.what;
    EXPECT_EQ(answer.samples, row.samples) << row.what;
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

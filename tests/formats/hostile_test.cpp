// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Files that lie, end early or were written carelessly. Whatever a header says, no more sound comes
// out than there is, and what keeps its sense is read.

#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <vector>

#include "tests/support/dsd_files.h"
#include "tests/support/id3_blocks.h"
#include "tests/support/sound_files.h"
#include "tests/support/temp_file.h"

namespace corvin::studio {
namespace {

using testing::Append;
using testing::AppendBig;
using testing::DsdiffChunk;
using testing::DsdiffFile;
using testing::DsdiffOptions;
using testing::DsfFile;
using testing::DsfOptions;
using testing::OneBitFile;
using testing::OneBitOptions;

// Opens the file, asks for everything and reads all sound. What must hold of any bytes at all.
void survive(const Bytes& bytes) {
  MemoryStream stream(bytes);
  const corvin_stream callbacks = stream.callbacks();
  corvin_file* handle = nullptr;
  const int status = corvin_file_open_stream(&callbacks, &handle);
  if (status != CORVIN_OK) {
    ASSERT_EQ(status, CORVIN_E_FORMAT);
    return;
  }
  corvin_file_info info = {};
  info.size = sizeof info;
  corvin_file_get_info(handle, &info);
  ASSERT_LE(info.warnings, 32u);
  for (std::uint32_t i = 0; i < info.chunks; ++i) {
    corvin_file_chunk chunk = {};
    chunk.size = sizeof chunk;
    ASSERT_EQ(corvin_file_get_chunk(handle, i, &chunk), CORVIN_OK);
    ASSERT_LE(chunk.header_offset, chunk.offset);
    ASSERT_LE(chunk.bytes, bytes.size());
    ASSERT_TRUE(chunk.bytes == 0 || chunk.offset <= bytes.size() - chunk.bytes);
  }
  DSD_TAG tag{};
  corvin_file_get_tags(handle, &tag);
  DSDTagClear(&tag);
  if (info.readable != CORVIN_OK) {
    ASSERT_NE(corvin_file_problem(handle), nullptr);
    ASSERT_EQ(info.samples, 0u);
  } else {
    ASSERT_LE(info.samples / 8 * info.channels, bytes.size());
    ASSERT_LE(info.channels, 64u);
    Bytes sound(512 * 64);
    std::uint64_t got = 0;
    std::size_t done = 0;
    do {
      ASSERT_EQ(corvin_file_read(handle, sound.data(), 512, CORVIN_LSB_FIRST, &done), CORVIN_OK);
      got += done;
    } while (done == 512);
    ASSERT_EQ(got, (info.samples + 7) / 8);
  }
  corvin_file_close(handle);
}

Bytes rich_dsdiff() {
  DsdiffOptions options;
  Bytes comment = {0, 1, 0x07, 0xcf, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 3, 'o', 'd', 'd', 0};
  Bytes name = {0, 0, 0, 3, 'A', 'B', 'C'};
  Bytes names = DsdiffChunk("DIAR", name);
  names.push_back(0);
  Append(names, DsdiffChunk("DITI", name));
  names.push_back(0);
  options.properties_last = DsdiffChunk("ID3 ", testing::Id3Block({}));
  options.after_sound = DsdiffChunk("COMT", comment);
  Append(options.after_sound, DsdiffChunk("DIIN", names));
  return DsdiffFile(2, 2822400, Bytes(200, kIdle), options);
}

std::vector<Bytes> samples_of_each_kind() {
  DsfOptions options;
  options.block_bytes = 16;
  options.tag = testing::Id3Block({});
  return {DsfFile(2, 2822400, Bytes(100, kIdle), options), rich_dsdiff(),
          OneBitFile(2, 2822400, Bytes(60, kIdle))};
}

TEST(Hostile, FilesCutAtEveryByte) {
  for (const Bytes& whole : samples_of_each_kind()) {
    for (std::size_t size = 0; size <= whole.size(); ++size) {
      survive(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
      if (HasFatalFailure()) FAIL() << "cut at " << size << " of " << whole.size();
    }
  }
}

TEST(Hostile, EveryByteOfTheHeadersReplaced) {
  for (const Bytes& whole : samples_of_each_kind()) {
    for (std::size_t at = 0; at < std::min<std::size_t>(whole.size(), 400); ++at) {
      for (const int value : {0x00, 0x01, 0x7f, 0x80, 0xff}) {
        Bytes lying = whole;
        lying[at] = static_cast<std::uint8_t>(value);
        survive(lying);
        // Sizes beyond every number of bytes there is.
        for (std::size_t i = at; i < std::min(at + 8, lying.size()); ++i) lying[i] = 0xff;
        survive(lying);
        if (HasFatalFailure()) FAIL() << "byte " << at << " replaced by " << value;
      }
    }
  }
}

// A file of nothing but chunk headers must not take for ever.
TEST(Hostile, MillionsOfChunks) {
  Bytes file;
  Append(file, "FRM8");
  AppendBig(file, 12000000, 8);
  Append(file, "DSD ");
  file.resize(12000000);
  survive(file);
  for (std::size_t at = 16; at + 12 < file.size(); at += 12) std::copy_n("COMT", 4, &file[at]);
  survive(file);
}

std::string chunk_list(const Bytes& bytes) {
  std::string list;
  for (const corvin_file_chunk& chunk : MemoryFile(bytes).chunks()) {
    if (!list.empty()) list += ", ";
    if (chunk.is_part != 0) list += "+";
    list += chunk.id + (" " + std::to_string(chunk.bytes));
    // Where a chunk has a header, that begins with its name.
    const std::string there(reinterpret_cast<const char*>(&bytes[chunk.header_offset]), 4);
    if (there != chunk.id) list += "?";
    if (chunk.bytes != chunk.stated_bytes) list += " of " + std::to_string(chunk.stated_bytes);
  }
  return list;
}

TEST(Chunks, AreListedAsTheWalkTookThem) {
  EXPECT_EQ(chunk_list(rich_dsdiff()),
            "FRM8 424, FVER 4, PROP 96, +FS   4, +CHNL 10, +CMPR 20, +ID3  10, DSD  200, COMT 20, "
            "DIIN 40, +DIAR 7, +DITI 7");
  DsfOptions dsf;
  dsf.block_bytes = 16;
  dsf.tag = testing::Id3Block({});
  // The tag's own header is ID3v2's.
  EXPECT_EQ(chunk_list(DsfFile(2, 2822400, Bytes(100, kIdle), dsf)),
            "DSD  16, fmt  40, data 128, ID3  10?");
  EXPECT_EQ(chunk_list(OneBitFile(2, 2822400, Bytes(60, kIdle))), "1bit 2048, data 60?");
  // Sizes of a stereo file, or none: the chunks are as long as they have to be.
  DsdiffOptions lying;
  lying.channels_size = 10;
  lying.sound_size = 0;
  EXPECT_EQ(chunk_list(DsdiffFile(3, 2822400, Bytes(300, kIdle), lying)),
            "FRM8 422, FVER 4, PROP 78, +FS   4, +CHNL 14 of 10, +CMPR 20, DSD  300 of 0");
}

struct Told {
  std::uint64_t samples;
  std::string said;  // part of a warning or of the problem; empty: nothing at all
  int readable = CORVIN_OK;
};

struct Fault {
  std::string name;
  Bytes file;
  Told told;
};

std::vector<Fault> all_faults() {
  std::vector<Fault> faults;
  using Dsf = DsfOptions;
  const auto dsf = [&](const std::string& name, const Told& told, auto change) {
    Dsf options;
    options.block_bytes = 16;
    change(options);
    const Bytes file = DsfFile(2, 2822400, Bytes(80, kIdle), options);
    faults.push_back({"DSF: " + name, file, told});
  };
  dsf("sound", {320, ""}, [](Dsf&) {});
  dsf("size without the header of the sound", {320, ""}, [](Dsf& o) { o.data_size = 96; });
  dsf("wrong size of the sound", {320, "sound chunk states"}, [](Dsf& o) { o.data_size = 1; });
  dsf("more samples than there are", {384, "of the 1000 samples"},
      [](Dsf& o) { o.sample_count = 1000; });
  dsf("most samples", {384, "is cut short"}, [](Dsf& o) { o.sample_count = UINT64_MAX; });
  dsf("no samples", {384, "declare no samples"}, [](Dsf& o) { o.sample_count = 0; });
  dsf("no channels", {0, "no channels", CORVIN_E_FORMAT}, [](Dsf& o) { o.stated_channels = 0; });
  dsf("many channels", {0, "200 channels", CORVIN_E_UNSUPPORTED},
      [](Dsf& o) { o.stated_channels = 200; });
  dsf("no block", {0, "blocks of 0 bytes", CORVIN_E_FORMAT},
      [](Dsf& o) { o.stated_block_bytes = 0; });
  dsf("huge block", {0, "blocks of", CORVIN_E_FORMAT},
      [](Dsf& o) { o.stated_block_bytes = 0xffffffff; });
  dsf("other bits", {320, "16 bits per sample"}, [](Dsf& o) { o.bits_per_sample = 16; });
  dsf("format chunk of size 0", {320, "format chunk"}, [](Dsf& o) { o.fmt_size = 0; });
  dsf("tag beyond the end", {320, "tag"}, [](Dsf& o) { o.metadata_pointer = 1u << 30; });
  dsf("tag in the sound", {320, "tag"}, [](Dsf& o) { o.metadata_pointer = 100; });
  dsf("trailing bytes", {320, "9 bytes at the end"}, [](Dsf& o) {
    o.tag = Bytes(9);
    o.metadata_pointer = 0;
  });
  dsf("unknown chunk", {320, ""},
      [](Dsf& o) { o.before_data = testing::DsfChunk("what", Bytes(7)); });
  dsf("chunk of size 0", {0, "no sound chunk", CORVIN_E_FORMAT},
      [](Dsf& o) { o.before_data = testing::DsfChunk("what", Bytes(7), 0); });

  using Dff = DsdiffOptions;
  const auto dff = [&](const std::string& name, std::uint16_t channels, const Told& told,
                       auto change) {
    Dff options;
    change(options);
    const Bytes file = DsdiffFile(channels, 2822400, Bytes(channels * 7u, kIdle), options);
    faults.push_back({"DSDIFF: " + name, file, told});
  };
  dff("sound", 2, {56, ""}, [](Dff&) {});
  // As a stereo file's, whatever the channels.
  dff("sizes of stereo, one channel", 1, {56, "wrong size"}, [](Dff& o) {
    o.channels_size = 10;
    o.properties_size = 74;
  });
  dff("sizes of stereo, five channels", 5, {56, "wrong size"}, [](Dff& o) {
    o.channels_size = 10;
    o.properties_size = 74;
  });
  dff("a name too few", 4, {40, "does not name each channel"}, [](Dff& o) {
    o.stated_channels = 5;
    o.channels_size = 10;
  });
  dff("no properties size", 2, {56, "property chunk"}, [](Dff& o) { o.properties_size = 0; });
  dff("huge properties", 2, {56, "property chunk"}, [](Dff& o) { o.properties_size = 1u << 30; });
  dff("no pad byte", 2, {56, "no pad byte"},
      [](Dff& o) { o.before_sound = DsdiffChunk("MANF", Bytes(3)); });
  dff("pad byte", 2, {56, ""}, [](Dff& o) { o.before_sound = DsdiffChunk("MANF", Bytes(4), 3); });
  dff("no size of the sound", 2, {56, "no size"}, [](Dff& o) { o.sound_size = 0; });
  dff("unset size of the sound", 2, {56, "no size"}, [](Dff& o) { o.sound_size = UINT64_MAX; });
  dff("more sound than there is", 2, {56, "of the 4000 samples"},
      [](Dff& o) { o.sound_size = 1000; });
  dff("a group that is cut", 3, {48, "that rest"}, [](Dff& o) { o.sound_size = 20; });
  dff("compressed", 2, {0, "DST", CORVIN_E_COMPRESSED},
      [](Dff& o) { o.compression_type = "DST "; });
  dff("no compression type", 2, {56, "compression type"},
      [](Dff& o) { o.compression_chunk = false; });
  dff("200 channels", 2, {0, "200", CORVIN_E_UNSUPPORTED}, [](Dff& o) { o.stated_channels = 200; });
  dff("no channels", 2, {0, "no channels", CORVIN_E_FORMAT}, [](Dff& o) { o.stated_channels = 0; });

  using One = OneBitOptions;
  const auto one = [&](const std::string& name, const Told& told, auto change) {
    One options;
    change(options);
    const Bytes file = OneBitFile(3, 2822400, Bytes(21, kIdle), options);
    faults.push_back({"1bit: " + name, file, told});
  };
  one("sound", {56, ""}, [](One&) {});
  one("no size", {56, "own end"}, [](One& o) { o.file_size = 0; });
  one("more than there is", {56, "is cut short"}, [](One& o) { o.file_size = 5000; });
  one("less than there is", {24, "12 bytes"}, [](One& o) { o.file_size = 2048 + 9; });
  one("sound in the header", {0, "begin", CORVIN_E_FORMAT},
      [](One& o) { o.stated_data_offset = 5; });
  one("sound beyond", {0, "begin", CORVIN_E_FORMAT}, [](One& o) { o.stated_data_offset = 9999; });
  return faults;
}

TEST(Faults, AreToleratedAndTold) {
  for (const Fault& fault : all_faults()) {
    SCOPED_TRACE(fault.name);
    MemoryFile file(fault.file);
    EXPECT_EQ(file.info().readable, fault.told.readable);
    EXPECT_EQ(file.info().samples, fault.told.samples);
    std::string said = file.problem();
    for (const std::string& warning : file.warnings()) said += "; " + warning;
    EXPECT_EQ(said.empty(), fault.told.said.empty()) << said;
    EXPECT_NE(said.find(fault.told.said), std::string::npos) << said;
    survive(fault.file);
  }
}

TEST(Faults, CompressedSoundTellsItsLength) {
  DsdiffOptions options;
  options.compression_type = "DST ";
  const Bytes frames = DsdiffChunk("FRTE", {0, 0, 0, 150, 0, 75});
  MemoryFile file(DsdiffFile(2, 2822400, frames, options));
  EXPECT_EQ(file.info().stated_samples, 5644800u);
  Bytes sound(2);
  std::size_t done = 1;
  EXPECT_EQ(corvin_file_read(file.handle(), sound.data(), 1, CORVIN_MSB_FIRST, &done),
            CORVIN_E_COMPRESSED);
  EXPECT_EQ(done, 0u);
}

TEST(Faults, BothPlacesOfTagsInDsdiff) {
  // Names, then a block in the properties, then one behind the sound: each wins over those before.
  DsdiffOptions options;
  options.properties_last =
      DsdiffChunk("ID3 ", testing::Id3Block({testing::Id3Frame("TALB", "\3album")}));
  const auto text = [](Bytes bytes) {
    MemoryFile opened(std::move(bytes));
    DSD_TAG tag{};
    opened.tags(tag);
    const std::string all = std::string(tag.title) + "/" + tag.artist + "/" + tag.album + "/" +
                            tag.comment + "/" + std::to_string(tag.year);
    DSDTagClear(&tag);
    return all;
  };
  EXPECT_EQ(text(rich_dsdiff()), "ABC/ABC//odd/1999");
  EXPECT_EQ(text(DsdiffFile(1, 2822400, Bytes(4), options)), "//album//0");
  options.after_sound =
      DsdiffChunk("ID3 ", testing::Id3Block({testing::Id3Frame("TALB", "\3later")}, {}, 4));
  EXPECT_EQ(text(DsdiffFile(1, 2822400, Bytes(4), options)), "//later//0");
}

TEST(Callbacks, FailingReadsAreTold) {
  const Bytes whole = file_of(writer_settings(CORVIN_DSF, 2), Bytes(2 * 200000));
  Bytes sound(2 * 200000);
  int status = CORVIN_E_READ;
  for (int good = 0; status != CORVIN_OK; ++good) {
    MemoryStream stream(whole);
    stream.calls_left = good;
    status = status_of([&] {
      File file(stream.callbacks());
      EXPECT_EQ(file.read(sound.data(), 200000), 200000u);
    });
    ASSERT_TRUE(status == CORVIN_E_READ || status == CORVIN_OK) << good;
    ASSERT_LT(good, 100);
  }
  // Shorter than it said.
  MemoryStream stream(Bytes(whole.begin(), whole.end() - 5000));
  stream.stated_length = static_cast<std::int64_t>(whole.size());
  const corvin_stream callbacks = stream.callbacks();
  File file(callbacks);
  std::size_t done = 0;
  EXPECT_EQ(corvin_file_read(file.handle(), sound.data(), 200000, CORVIN_MSB_FIRST, &done),
            CORVIN_E_READ);
  EXPECT_GT(done, 190000u);
}

TEST(Open, SaysWhatCannotBeOpened) {
  corvin_file* file = nullptr;
  EXPECT_EQ(corvin_file_open("/no/such/file", &file), CORVIN_E_READ);
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(corvin_file_open("/dev/zero", &file), CORVIN_E_READ);
  EXPECT_EQ(errno, 0);
  EXPECT_EQ(corvin_file_open("/", &file), CORVIN_E_READ);
  EXPECT_EQ(corvin_file_open(nullptr, &file), CORVIN_E_ARGUMENT);
  const testing::TempFile empty(Bytes{});
  EXPECT_EQ(corvin_file_open(empty.path(), &file), CORVIN_E_FORMAT);
  EXPECT_EQ(file, nullptr);
  corvin_stream stream = {};
  EXPECT_EQ(corvin_file_open_stream(&stream, &file), CORVIN_E_ARGUMENT);
}

}  // namespace
}  // namespace corvin::studio

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Files that lie, end early or were written carelessly. Whatever a header says, no more sound comes
// out than there is, and what keeps its sense is read.

#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <vector>

#include "tests/studio_files/sound_files.h"
#include "tests/support/dsd_files.h"
#include "tests/support/id3_blocks.h"
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
  return DsdiffFile(2, 2822400, Bytes(200, 0x69), options);
}

std::vector<Bytes> samples_of_each_kind() {
  DsfOptions options;
  options.block_bytes = 16;
  options.tag = testing::Id3Block({});
  return {DsfFile(2, 2822400, Bytes(100, 0x69), options), rich_dsdiff(),
          OneBitFile(2, 2822400, Bytes(60, 0x69))};
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

TEST(Hostile, NoiseBehindEachFirstWord) {
  Random random(8);
  for (int i = 0; i < 3000; ++i) {
    Bytes noise = random.bytes(random() % 600);
    const char* words[] = {"DSD ", "FRM8", "1bit"};
    Bytes file;
    Append(file, words[i % 3]);
    Append(file, noise);
    if (file.size() > 16 && i % 3 == 1) std::copy_n("DSD ", 4, &file[12]);
    survive(file);
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

struct Fault {
  const char* name;
  Bytes file;
  int readable;
  std::uint64_t samples;
  const char* said;  // part of a warning or of the problem; empty: nothing at all
};

std::vector<Fault> dsf_faults() {
  std::vector<Fault> faults;
  const auto add = [&](const char* name, auto change, int readable, std::uint64_t samples,
                       const char* said) {
    DsfOptions options;
    options.block_bytes = 16;
    change(options);
    faults.push_back(
        {name, DsfFile(2, 2822400, Bytes(80, 0x69), options), readable, samples, said});
  };
  using O = DsfOptions;
  add(
      "sound", [](O&) {}, CORVIN_OK, 320, "");
  add(
      "size without the header of the sound", [](O& o) { o.data_size = 96; }, CORVIN_OK, 320, "");
  add(
      "wrong size of the sound", [](O& o) { o.data_size = 1; }, CORVIN_OK, 320,
      "sound chunk states");
  add(
      "more samples than there are", [](O& o) { o.sample_count = 1000; }, CORVIN_OK, 384,
      "of the 1000 samples");
  add(
      "most samples", [](O& o) { o.sample_count = UINT64_MAX; }, CORVIN_OK, 384, "is cut short");
  add(
      "no samples", [](O& o) { o.sample_count = 0; }, CORVIN_OK, 384, "declare no samples");
  add(
      "no channels", [](O& o) { o.stated_channels = 0; }, CORVIN_E_FORMAT, 0, "no channels");
  add(
      "many channels", [](O& o) { o.stated_channels = 200; }, CORVIN_E_UNSUPPORTED, 0,
      "200 channels");
  add(
      "most channels", [](O& o) { o.stated_channels = 0xffffffff; }, CORVIN_E_UNSUPPORTED, 0,
      "channels");
  add(
      "no block", [](O& o) { o.stated_block_bytes = 0; }, CORVIN_E_FORMAT, 0, "blocks of 0 bytes");
  add(
      "huge block", [](O& o) { o.stated_block_bytes = 0xffffffff; }, CORVIN_E_FORMAT, 0,
      "blocks of");
  add(
      "other bits", [](O& o) { o.bits_per_sample = 16; }, CORVIN_OK, 320, "16 bits per sample");
  add(
      "format chunk of size 0", [](O& o) { o.fmt_size = 0; }, CORVIN_OK, 320, "format chunk");
  add(
      "tag beyond the end", [](O& o) { o.metadata_pointer = 1u << 30; }, CORVIN_OK, 320, "tag");
  add(
      "tag in the sound", [](O& o) { o.metadata_pointer = 100; }, CORVIN_OK, 320, "tag");
  add(
      "trailing bytes",
      [](O& o) {
        o.tag = Bytes(9);
        o.metadata_pointer = 0;
      },
      CORVIN_OK, 320, "9 bytes at the end");
  add(
      "unknown chunk", [](O& o) { o.before_data = testing::DsfChunk("what", Bytes(7)); }, CORVIN_OK,
      320, "");
  add(
      "chunk of size 0", [](O& o) { o.before_data = testing::DsfChunk("what", Bytes(7), 0); },
      CORVIN_E_FORMAT, 0, "no sound chunk");
  return faults;
}

std::vector<Fault> dsdiff_faults() {
  std::vector<Fault> faults;
  const auto add = [&](const char* name, std::uint16_t channels, auto change, int readable,
                       std::uint64_t samples, const char* said) {
    DsdiffOptions options;
    change(options);
    const Bytes sound(static_cast<std::size_t>(channels) * 7, 0x69);
    faults.push_back(
        {name, DsdiffFile(channels, 2822400, sound, options), readable, samples, said});
  };
  using O = DsdiffOptions;
  add(
      "sound", 2, [](O&) {}, CORVIN_OK, 56, "");
  // As a stereo file's, whatever the channels.
  add(
      "sizes of stereo, one channel", 1,
      [](O& o) {
        o.channels_size = 10;
        o.properties_size = 74;
      },
      CORVIN_OK, 56, "wrong size");
  add(
      "sizes of stereo, five channels", 5,
      [](O& o) {
        o.channels_size = 10;
        o.properties_size = 74;
      },
      CORVIN_OK, 56, "wrong size");
  add(
      "a name too few", 4,
      [](O& o) {
        o.stated_channels = 5;
        o.channels_size = 10;
      },
      CORVIN_OK, 40, "does not name each channel");
  add(
      "no properties size", 2, [](O& o) { o.properties_size = 0; }, CORVIN_OK, 56,
      "property chunk");
  add(
      "huge properties", 2, [](O& o) { o.properties_size = 1u << 30; }, CORVIN_OK, 56,
      "property chunk");
  add(
      "no pad byte", 2, [](O& o) { o.before_sound = DsdiffChunk("MANF", Bytes(3)); }, CORVIN_OK, 56,
      "no pad byte");
  add(
      "pad byte", 2, [](O& o) { o.before_sound = DsdiffChunk("MANF", Bytes(4), 3); }, CORVIN_OK, 56,
      "");
  add(
      "no size of the sound", 2, [](O& o) { o.sound_size = 0; }, CORVIN_OK, 56, "no size");
  add(
      "unset size of the sound", 2, [](O& o) { o.sound_size = UINT64_MAX; }, CORVIN_OK, 56,
      "no size");
  add(
      "more sound than there is", 2, [](O& o) { o.sound_size = 1000; }, CORVIN_OK, 56,
      "of the 4000 samples");
  add(
      "a group that is cut", 3, [](O& o) { o.sound_size = 20; }, CORVIN_OK, 48, "that rest");
  add(
      "compressed", 2, [](O& o) { o.compression_type = "DST "; }, CORVIN_E_COMPRESSED, 0, "DST");
  add(
      "no compression type", 2, [](O& o) { o.compression_chunk = false; }, CORVIN_OK, 56,
      "compression type");
  add(
      "200 channels", 2, [](O& o) { o.stated_channels = 200; }, CORVIN_E_UNSUPPORTED, 0, "200");
  add(
      "no channels", 2, [](O& o) { o.stated_channels = 0; }, CORVIN_E_FORMAT, 0, "no channels");
  return faults;
}

std::vector<Fault> one_bit_faults() {
  std::vector<Fault> faults;
  const auto add = [&](const char* name, auto change, int readable, std::uint64_t samples,
                       const char* said) {
    OneBitOptions options;
    change(options);
    faults.push_back(
        {name, OneBitFile(3, 2822400, Bytes(21, 0x69), options), readable, samples, said});
  };
  using O = OneBitOptions;
  add(
      "sound", [](O&) {}, CORVIN_OK, 56, "");
  add(
      "no size", [](O& o) { o.file_size = 0; }, CORVIN_OK, 56, "own end");
  add(
      "more than there is", [](O& o) { o.file_size = 5000; }, CORVIN_OK, 56, "is cut short");
  add(
      "most", [](O& o) { o.file_size = UINT64_MAX; }, CORVIN_OK, 56, "is cut short");
  add(
      "less than there is", [](O& o) { o.file_size = 2048 + 9; }, CORVIN_OK, 24, "12 bytes");
  add(
      "sound in the header", [](O& o) { o.stated_data_offset = 5; }, CORVIN_E_FORMAT, 0, "begin");
  add(
      "sound beyond", [](O& o) { o.stated_data_offset = 9999; }, CORVIN_E_FORMAT, 0, "begin");
  return faults;
}

TEST(Faults, AreToleratedAndTold) {
  for (const auto& make : {dsf_faults, dsdiff_faults, one_bit_faults}) {
    for (const Fault& fault : make()) {
      SCOPED_TRACE(fault.name);
      MemoryStream stream(fault.file);
      const corvin_stream callbacks = stream.callbacks();
      File file(callbacks);
      const corvin_file_info info = file.info();
      EXPECT_EQ(info.readable, fault.readable);
      EXPECT_EQ(info.samples, fault.samples);
      std::string said = file.problem();
      for (const std::string& warning : file.warnings()) said += "; " + warning;
      if (*fault.said == 0) {
        EXPECT_EQ(said, "");
      } else {
        EXPECT_NE(said.find(fault.said), std::string::npos) << said;
      }
      survive(fault.file);
    }
  }
}

TEST(Faults, CompressedSoundTellsItsLength) {
  DsdiffOptions options;
  options.compression_type = "DST ";
  const Bytes frames = DsdiffChunk("FRTE", {0, 0, 0, 150, 0, 75});
  MemoryStream stream(DsdiffFile(2, 2822400, frames, options));
  const corvin_stream callbacks = stream.callbacks();
  File file(callbacks);
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
    MemoryStream stream(std::move(bytes));
    const corvin_stream callbacks = stream.callbacks();
    File opened(callbacks);
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
  for (int good = 0;; ++good) {
    MemoryStream stream(whole);
    stream.calls_left = good;
    const corvin_stream callbacks = stream.callbacks();
    corvin_file* file = nullptr;
    int status = corvin_file_open_stream(&callbacks, &file);
    Bytes sound(2 * 200000);
    std::size_t done = 0;
    if (status == CORVIN_OK) {
      status = corvin_file_read(file, sound.data(), 200000, CORVIN_MSB_FIRST, &done);
      EXPECT_EQ(status == CORVIN_OK, done == 200000u);
      corvin_file_close(file);
      if (status == CORVIN_OK) break;
    }
    ASSERT_EQ(status, CORVIN_E_READ) << good;
    ASSERT_LT(good, 100);
  }
  // Shorter than it said.
  MemoryStream stream(Bytes(whole.begin(), whole.end() - 5000));
  stream.stated_length = static_cast<std::int64_t>(whole.size());
  const corvin_stream callbacks = stream.callbacks();
  File file(callbacks);
  Bytes sound(2 * 200000);
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

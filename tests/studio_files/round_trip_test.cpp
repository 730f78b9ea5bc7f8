// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What is written comes back, from every container, and the bytes of the files are those that the
// formats' rules ask for.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "formats/byte_order.h"
#include "tests/studio_files/sound_files.h"
#include "tests/support/temp_file.h"

namespace corvin::studio {
namespace {

using formats::ByteOrder;
using testing::TempFile;

std::uint32_t most_channels(corvin_container container) { return container == CORVIN_DSF ? 6 : 8; }

Bytes contents(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(file), {});
}

TEST(RoundTrip, EveryContainerLengthAndChannelCount) {
  Random random(3);
  for (const corvin_container container : kContainers) {
    for (std::uint32_t channels = 1; channels <= most_channels(container); ++channels) {
      for (const std::size_t bytes : {0u, 1u, 5u, 4096u, 4097u, 70001u}) {
        SCOPED_TRACE("container " + std::to_string(container) + ", " + std::to_string(channels) +
                     " channels, " + std::to_string(bytes) + " bytes");
        const Bytes sound = random.bytes(bytes * channels);
        MemoryStream stream;
        {
          WriterSettings settings = writer_settings(container, channels);
          Writer writer(stream.callbacks(), settings);
          for (std::size_t done = 0; done < bytes;) {
            const std::size_t part = std::min<std::size_t>(bytes - done, random() % 20000);
            writer.write(&sound[done * channels], part);
            done += part;
          }
          writer.finish(bytes * 8);
        }
        const corvin_stream callbacks = stream.callbacks();
        File file(callbacks);
        const corvin_file_info info = file.info();
        EXPECT_EQ(info.container, static_cast<std::uint32_t>(container));
        EXPECT_EQ(info.dsd_rate, 2822400u);
        EXPECT_EQ(info.channels, channels);
        EXPECT_EQ(info.samples, bytes * 8);
        EXPECT_EQ(info.stated_samples, bytes * 8);
        EXPECT_EQ(file.warnings(), std::vector<std::string>{});
        EXPECT_TRUE(read_all(file, CORVIN_MSB_FIRST, [&] { return random() % 9000 + 1; }) == sound);
        file.seek(0);
        Bytes back = read_all(file, CORVIN_LSB_FIRST);
        for (std::uint8_t& byte : back) byte = reversed(byte);
        EXPECT_TRUE(back == sound);
      }
    }
  }
}

TEST(RoundTrip, PlanarAndBothBitOrdersWriteTheSameFile) {
  Random random(4);
  const Bytes sound = random.bytes(3 * 9000);
  for (const corvin_container container : kContainers) {
    WriterSettings settings = writer_settings(container, 3);
    const Bytes expected = file_of(settings, sound);
    settings.bit_order = CORVIN_LSB_FIRST;
    std::vector<Bytes> planes(3);
    for (std::size_t i = 0; i < sound.size(); ++i) planes[i % 3].push_back(reversed(sound[i]));
    MemoryStream stream;
    Writer writer(stream.callbacks(), settings);
    for (const std::size_t at : {0u, 1u, 4096u}) {
      const std::uint8_t* in[] = {&planes[0][at], &planes[1][at], &planes[2][at]};
      writer.write_planar(in, at == 0 ? 1 : at == 1 ? 4095 : 9000 - 4096);
    }
    writer.finish(9000 * 8);
    EXPECT_TRUE(stream.bytes == expected) << container;

    const corvin_stream callbacks = stream.callbacks();
    File file(callbacks);
    std::vector<Bytes> back(3, Bytes(9000));
    std::uint8_t* out[] = {back[0].data(), back[1].data(), back[2].data()};
    EXPECT_EQ(file.read_planar(out, 9001, CORVIN_LSB_FIRST), 9000u);
    EXPECT_TRUE(back == planes) << container;
  }
}

// The samples behind the last one are silence, in the file and for the reader.
TEST(RoundTrip, CountsThatEndWithinAByte) {
  const Bytes sound(2 * 10, 0xff);
  for (const corvin_container container : kContainers) {
    const MemoryStream stream(file_of(writer_settings(container, 2), sound, 77));
    MemoryStream copy = stream;
    const corvin_stream callbacks = copy.callbacks();
    File file(callbacks);
    // Only DSF states samples.
    EXPECT_EQ(file.info().samples, container == CORVIN_DSF ? 77u : 80u);
    const Bytes back = read_all(file);
    ASSERT_EQ(back.size(), sound.size());
    EXPECT_EQ(back[17], 0xff);
    EXPECT_EQ(back[18], 0xf8 | (0x69 & 7));
    EXPECT_EQ(back[19], 0xf8 | (0x69 & 7));
  }
  // A last byte that the writer of another file left dirty.
  Bytes dirty = file_of(writer_settings(CORVIN_DSF, 1), Bytes(10, 0xff), 77);
  dirty[92 + 9] = 0;
  MemoryStream stream(dirty);
  const corvin_stream callbacks = stream.callbacks();
  File file(callbacks);
  const Bytes back = read_all(file, CORVIN_LSB_FIRST);
  EXPECT_EQ(back[9], 0x96 & 0xe0);
}

TEST(RoundTrip, SeekReachesEveryByte) {
  Random random(5);
  const Bytes sound = random.bytes(2 * 10000);
  for (const corvin_container container : kContainers) {
    MemoryStream stream(file_of(writer_settings(container, 2), sound));
    stream.most_at_once = 1000;
    const corvin_stream callbacks = stream.callbacks();
    File file(callbacks);
    for (int i = 0; i < 200; ++i) {
      const std::uint64_t sample = random() % 80001;
      file.seek(sample);
      const auto byte = static_cast<std::size_t>(sample / 8);
      EXPECT_EQ(file.tell(), byte * 8);
      Bytes two(4);
      const std::size_t done = file.read(two.data(), 2);
      ASSERT_EQ(done, std::min<std::size_t>(2, 10000 - byte));
      EXPECT_TRUE(std::equal(two.begin(), two.begin() + static_cast<std::ptrdiff_t>(2 * done),
                             sound.begin() + static_cast<std::ptrdiff_t>(2 * byte)));
    }
    EXPECT_EQ(corvin_file_seek(file.handle(), 80001), CORVIN_E_ARGUMENT);
  }
}

TEST(RoundTrip, SpeakersAreNamedAndFound) {
  const struct {
    corvin_container container;
    std::uint32_t channels, asked, found;
  } kCases[] = {
      {CORVIN_DSF, 1, 0, 4},        {CORVIN_DSF, 2, 0, 3},       {CORVIN_DSF, 3, 0, 7},
      {CORVIN_DSF, 4, 0, 0x33},     {CORVIN_DSF, 4, 0xf, 0xf},   {CORVIN_DSF, 5, 0, 0x37},
      {CORVIN_DSF, 6, 0, 0x3f},     {CORVIN_DSDIFF, 1, 0, 4},    {CORVIN_DSDIFF, 2, 0, 3},
      {CORVIN_DSDIFF, 3, 0xb, 0xb}, {CORVIN_DSDIFF, 4, 0, 0x33}, {CORVIN_DSDIFF, 5, 0, 0x37},
      {CORVIN_DSDIFF, 6, 0, 0x3f},  {CORVIN_DSDIFF, 7, 0, 0},    {CORVIN_DSDIFF, 2, 0x600, 0},
      {CORVIN_ONE_BIT, 2, 0, 3}};
  for (const auto& one : kCases) {
    WriterSettings settings = writer_settings(one.container, one.channels);
    settings.speakers = one.asked;
    MemoryStream stream(file_of(settings, Bytes(one.channels * 3)));
    const corvin_stream callbacks = stream.callbacks();
    EXPECT_EQ(File(callbacks).info().speakers, one.found)
        << one.container << ", " << one.channels << " channels";
  }
}

std::uint64_t number(const Bytes& file, std::size_t at, bool big) {
  return formats::Load<std::uint64_t>(big ? ByteOrder::kBig : ByteOrder::kLittle, &file[at]);
}

// Sizes as the formats define them, for odd sound and an odd tag.
TEST(RoundTrip, HeadersStateTrueSizes) {
  DSD_TAG tag{};
  std::strcpy(tag.title, "title");
  for (const std::uint32_t channels : {1u, 3u}) {
    const Bytes sound(channels * 5, 0x33);
    const Bytes dsf = file_of(writer_settings(CORVIN_DSF, channels), sound, 40, &tag);
    EXPECT_EQ(number(dsf, 12, false), dsf.size());
    EXPECT_EQ(number(dsf, 20, false), 92u + channels * 4096);
    EXPECT_EQ(number(dsf, 84, false), 12u + channels * 4096);
    EXPECT_EQ(dsf[92 + 4], 0xcc);
    EXPECT_EQ(dsf[92 + 5], 0);
    EXPECT_EQ(dsf[92 + 4095], 0);

    const Bytes dff = file_of(writer_settings(CORVIN_DSDIFF, channels), sound, 40, &tag);
    EXPECT_EQ(number(dff, 4, true), dff.size() - 12);
    EXPECT_EQ(dff.size() % 2, 0u);
    const std::uint64_t properties = number(dff, 36, true);
    EXPECT_EQ(properties, 4 + 16 + 14 + 4 * channels + 32);
    const auto sound_at = static_cast<std::size_t>(44 + properties);
    EXPECT_EQ(std::memcmp(&dff[sound_at], "DSD ", 4), 0);
    EXPECT_EQ(number(dff, sound_at + 4, true), 5 * channels);
    EXPECT_EQ(std::memcmp(&dff[sound_at + 12 + 5 * channels + 1], "ID3 ", 4), 0);

    const Bytes one_bit = file_of(writer_settings(CORVIN_ONE_BIT, channels), sound, 40, &tag);
    EXPECT_EQ(one_bit.size(), 2048 + 5 * channels);
    EXPECT_EQ(formats::Load<std::uint32_t>(ByteOrder::kBig, &one_bit[12]), one_bit.size());
  }
}

TEST(RoundTrip, TagsComeBack) {
  DSD_TAG tag{};
  std::strcpy(tag.title, "T\xc3\xaftle");
  std::strcpy(tag.artist, "Artist");
  std::strcpy(tag.comment, "odd");
  tag.year = 1999;
  DSD_PICTURE* picture = tag.PictureAlloc(1, 5, false);
  std::strcpy(picture->mime, "image/png");
  std::memcpy(picture->data, "12345", 5);
  for (const corvin_container container : kContainers) {
    MemoryStream stream(file_of(writer_settings(container, 1), Bytes(3), 24, &tag));
    const corvin_stream callbacks = stream.callbacks();
    File file(callbacks);
    EXPECT_EQ(file.warnings(), std::vector<std::string>{});
    DSD_TAG back{};
    file.tags(back);
    EXPECT_EQ(back.format, static_cast<std::uint32_t>(container));
    if (container == CORVIN_ONE_BIT) {
      EXPECT_STREQ(back.title, "");
    } else {
      EXPECT_STREQ(back.title, tag.title);
      EXPECT_STREQ(back.comment, "odd");
      EXPECT_EQ(back.year, 1999);
      ASSERT_EQ(back.pictureCount, 1);
      EXPECT_EQ(std::memcmp(back.pictures[0]->data, "12345", 5), 0);
    }
    DSDTagClear(&back);
  }
  DSDTagClear(&tag);
}

// Through every pair of containers, back to the file it began with.
TEST(RoundTrip, CopiesBetweenContainers) {
  Random random(6);
  const Bytes sound = random.bytes(2 * 12345);
  for (const corvin_container from : kContainers) {
    for (const corvin_container to : kContainers) {
      MemoryStream source(file_of(writer_settings(from, 2), sound));
      MemoryStream target;
      const corvin_stream callbacks = source.callbacks();
      File file(callbacks);
      Writer writer(target.callbacks(), writer_settings(to, 2));
      EXPECT_EQ(corvin_convert_copy(file.handle(), writer.handle(), nullptr), CORVIN_OK);
      EXPECT_TRUE(target.bytes == file_of(writer_settings(to, 2), sound)) << from << to;
      EXPECT_EQ(corvin_convert_copy(file.handle(), writer.handle(), nullptr), CORVIN_E_STATE);
      Writer other(target.callbacks(), writer_settings(to, 1));
      EXPECT_EQ(corvin_convert_copy(file.handle(), other.handle(), nullptr), CORVIN_E_ARGUMENT);
    }
  }
}

TEST(WriterPath, TheNameStandsForWholeFilesOnly) {
  namespace fs = std::filesystem;
  const fs::path folder =
      fs::path(::testing::TempDir()) / ("corvin_new_" + std::to_string(getpid()));
  fs::create_directory(folder);
  const std::string path = folder / "out.dsf";
  const std::string link = folder / "link.dsf";
  const Bytes sound(2 * 5000, 0x55);
  const auto files = [&] {
    return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
  };
  std::ofstream(path) << "older";
  fs::create_symlink("out.dsf", link);
  {
    Writer writer(link.c_str(), writer_settings(CORVIN_DSF, 2));
    writer.write(sound.data(), 5000);
    EXPECT_EQ(contents(path), (Bytes{'o', 'l', 'd', 'e', 'r'}));
  }
  EXPECT_EQ(contents(path).size(), 5u);
  EXPECT_EQ(files(), 2);
  {
    Writer writer(link.c_str(), writer_settings(CORVIN_DSF, 2));
    writer.write(sound.data(), 5000);
    writer.finish(40000);
    EXPECT_EQ(corvin_writer_write(writer.handle(), sound.data(), 1), CORVIN_E_STATE);
    EXPECT_EQ(corvin_writer_finish(writer.handle(), 40000), CORVIN_E_STATE);
  }
  EXPECT_TRUE(contents(path) == file_of(writer_settings(CORVIN_DSF, 2), sound));
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(files(), 2);

  corvin_writer* writer = nullptr;
  const WriterSettings settings;
  for (const std::string& bad : {folder.string(), (folder / "none" / "x").string(),
                                 std::string("/dev/null"), std::string()}) {
    EXPECT_EQ(corvin_writer_create(bad.c_str(), &settings, &writer), CORVIN_E_WRITE) << bad;
    EXPECT_NE(errno, 0);
  }
  fs::remove_all(folder);
}

// The disk fills up at any moment: an error, and the older file stays.
TEST(WriterPath, FullDisk) {
  const TempFile older({'o'});
  for (const rlim_t limit : {10, 100, 70000, 200000}) {
    const pid_t child = fork();
    if (child == 0) {
      std::signal(SIGXFSZ, SIG_IGN);
      const rlimit size = {limit, limit};
      setrlimit(RLIMIT_FSIZE, &size);
      corvin_writer* writer = nullptr;
      const WriterSettings settings;
      int status = corvin_writer_create(older.path(), &settings, &writer);
      const Bytes sound(2 * 1000);
      for (int i = 0; i < 200 && status == CORVIN_OK; ++i) {
        status = corvin_writer_write(writer, sound.data(), 1000);
      }
      if (status == CORVIN_OK) status = corvin_writer_finish(writer, 1600000);
      corvin_writer_close(writer);
      _exit(-status);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == -CORVIN_E_WRITE) << limit;
    EXPECT_EQ(contents(older.path()).size(), 1u);
  }
}

TEST(WriterCallbacks, EveryWriteMayFail) {
  for (const corvin_container container : kContainers) {
    for (int good = 0;; ++good) {
      MemoryStream stream;
      stream.calls_left = good;
      const corvin_stream callbacks = stream.callbacks();
      const WriterSettings settings = writer_settings(container, 2);
      corvin_writer* writer = nullptr;
      int status = corvin_writer_create_stream(&callbacks, &settings, &writer);
      const Bytes sound(2 * 70000);
      if (status == CORVIN_OK) status = corvin_writer_write(writer, sound.data(), 70000);
      if (status == CORVIN_OK) status = corvin_writer_finish(writer, 560000);
      corvin_writer_close(writer);
      if (status == CORVIN_OK) {
        EXPECT_GE(good, 4);
        break;
      }
      ASSERT_EQ(status, CORVIN_E_WRITE) << good;
      ASSERT_LT(good, 10);
    }
  }
}

TEST(Writer, RefusesWhatNoContainerCanState) {
  MemoryStream stream;
  const corvin_stream callbacks = stream.callbacks();
  const auto status = [&](auto change) {
    WriterSettings settings;
    change(settings);
    corvin_writer* writer = nullptr;
    const int result = corvin_writer_create_stream(&callbacks, &settings, &writer);
    EXPECT_EQ(writer != nullptr, result == CORVIN_OK);
    corvin_writer_close(writer);
    return result;
  };
  using S = WriterSettings;
  EXPECT_EQ(status([](S&) {}), CORVIN_OK);
  EXPECT_EQ(status([](S& s) { s.container = 0; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.container = 4; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.channels = 0; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.channels = 7; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.speakers = 7; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.dsd_rate = 0; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status([](S& s) { s.size = 1; }), CORVIN_E_ARGUMENT);

  Writer writer(callbacks, WriterSettings());
  writer.write("1234", 2);
  for (const std::uint64_t samples : {0u, 8u, 17u}) {
    EXPECT_EQ(corvin_writer_finish(writer.handle(), samples), CORVIN_E_ARGUMENT);
  }
  writer.finish(9);
}

}  // namespace
}  // namespace corvin::studio

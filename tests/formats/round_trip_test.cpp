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

#include "formats/bytes/byte_order.h"
#include "tests/support/sound_files.h"
#include "tests/support/temp_file.h"

namespace corvin::studio {
namespace {

using formats::ByteOrder;
using testing::TempFile;

std::uint32_t most_channels(corvin_container container) { return container == CORVIN_DSF ? 6 : 8; }

TEST(RoundTrip, EveryContainerLengthAndChannelCount) {
  Random random(3);
  for (const corvin_container container : kContainers) {
    for (std::uint32_t channels = 1; channels <= most_channels(container); ++channels) {
      for (const std::size_t bytes : {0u, 1u, 5u, 4096u, 4097u, 70001u}) {
        SCOPED_TRACE("container " + std::to_string(container) + ", " + std::to_string(channels) +
                     " channels, " + std::to_string(bytes) + " bytes");
        const Bytes sound = random.bytes(bytes * channels);
        MemoryStream stream;
        Writer writer(stream.callbacks(), writer_settings(container, channels));
        for (std::size_t done = 0; done < bytes;) {
          const std::size_t part = std::min<std::size_t>(bytes - done, random() % 20000);
          writer.write(&sound[done * channels], part);
          done += part;
        }
        writer.finish(bytes * 8);
        MemoryFile file(stream.bytes);
        const corvin_file_info info = file.info();
        EXPECT_EQ(info.container, static_cast<std::uint32_t>(container));
        EXPECT_EQ(info.dsd_rate, 2822400u);
        EXPECT_EQ(info.channels, channels);
        EXPECT_EQ(info.samples, bytes * 8);
        EXPECT_EQ(info.stated_samples, bytes * 8);
        EXPECT_EQ(file.warnings(), std::vector<std::string>{});
        EXPECT_TRUE(read_all(file, CORVIN_MSB_FIRST, &random) == sound);
      }
    }
  }
}

TEST(RoundTrip, PlanarAndBothBitOrdersWriteTheSameFile) {
  Random random(4);
  const std::vector<Bytes> planes = {random.bytes(9000), random.bytes(9000), random.bytes(9000)};
  for (const corvin_container container : kContainers) {
    WriterSettings settings = writer_settings(container, 3);
    const Bytes expected = file_of(settings, layout(planes, 1, CORVIN_LSB_FIRST));
    settings.bit_order = CORVIN_LSB_FIRST;
    MemoryStream stream;
    Writer writer(stream.callbacks(), settings);
    for (const std::size_t at : {0u, 1u, 4096u}) {
      const std::uint8_t* in[] = {&planes[0][at], &planes[1][at], &planes[2][at]};
      writer.write_planar(in, at == 0 ? 1 : at == 1 ? 4095 : 9000 - 4096);
    }
    writer.finish(9000 * 8);
    EXPECT_TRUE(stream.bytes == expected) << container;

    MemoryFile file(stream.bytes);
    std::vector<Bytes> back(3, Bytes(9000));
    std::uint8_t* out[] = {back[0].data(), back[1].data(), back[2].data()};
    EXPECT_EQ(file.read_planar(out, 9001, CORVIN_LSB_FIRST), 9000u);
    EXPECT_TRUE(back == planes) << container;
  }
}

// The samples behind the last one are silence, in the file and for the reader.
TEST(RoundTrip, CountsThatEndWithinAByte) {
  for (const corvin_container container : kContainers) {
    MemoryFile file(file_of(writer_settings(container, 2), Bytes(2 * 10, 0xff), 77));
    // Only DSF states samples.
    EXPECT_EQ(file.info().samples, container == CORVIN_DSF ? 77u : 80u);
    Bytes expected(2 * 10, 0xff);
    expected[18] = expected[19] = 0xf8 | (kIdle & 7);
    EXPECT_EQ(read_all(file), expected);
  }
  // A last byte that the writer of another file left dirty.
  Bytes dirty = file_of(writer_settings(CORVIN_DSF, 1), Bytes(10, 0xff), 77);
  dirty[92 + 9] = 0;
  MemoryFile file(dirty);
  EXPECT_EQ(read_all(file, CORVIN_LSB_FIRST)[9], 0x96 & 0xe0);
}

TEST(RoundTrip, SeekReachesEveryByte) {
  Random random(5);
  const Bytes sound = random.bytes(2 * 10000);
  for (const corvin_container container : kContainers) {
    MemoryFile file(file_of(writer_settings(container, 2), sound));
    file.most_at_once = 1000;
    for (int i = 0; i < 200; ++i) {
      const std::uint64_t sample = random() % 80001;
      file.seek(sample);
      const auto byte = static_cast<std::ptrdiff_t>(sample / 8);
      EXPECT_EQ(file.tell(), byte * 8);
      Bytes two(4);
      two.resize(2 * file.read(two.data(), 2));
      const std::ptrdiff_t end = std::min<std::ptrdiff_t>(byte + 2, 10000);
      EXPECT_EQ(two, Bytes(sound.begin() + 2 * byte, sound.begin() + 2 * end));
    }
    EXPECT_EQ(corvin_file_seek(file.handle(), 80001), CORVIN_E_ARGUMENT);
  }
}

TEST(RoundTrip, SpeakersAreNamedAndFound) {
  const struct {
    corvin_container container;
    std::uint32_t channels, asked, found;
  } kCases[] = {{CORVIN_DSF, 1, 0, 4},
                {CORVIN_DSF, 2, 0, 3},
                {CORVIN_DSF, 3, 0, 7},
                {CORVIN_DSF, 4, 0, 0x33},
                {CORVIN_DSF, 4, 0xf, 0xf},
                {CORVIN_DSF, 5, 0, 0x37},
                {CORVIN_DSF, 6, 0, 0x3f},
                {CORVIN_DSDIFF, 1, 0, 4},
                {CORVIN_DSDIFF, 2, 0, 3},
                {CORVIN_DSDIFF, 3, 0xb, 0xb},
                {CORVIN_DSDIFF, 4, 0, 0x33},
                {CORVIN_DSDIFF, 5, 0, 0x37},
                {CORVIN_DSDIFF, 6, 0, 0x3f},
                {CORVIN_DSDIFF, 7, 0, 0},
                {CORVIN_DSDIFF, 2, 0x600, 0x600},
                {CORVIN_DSDIFF, 8, 0x63f, 0x63f},
                {CORVIN_DSDIFF, 8, 0xff, 0xff},
                {CORVIN_DSDIFF, 18, 0x3ffff, 0x3ffff},
                {CORVIN_DSDIFF, 2, 0x40001, 0},
                {CORVIN_ONE_BIT, 2, 0, 3},
                {CORVIN_ONE_BIT, 6, 0x3f, 0}};
  for (const auto& one : kCases) {
    WriterSettings settings = writer_settings(one.container, one.channels);
    settings.speakers = one.asked;
    EXPECT_EQ(MemoryFile(file_of(settings, Bytes(one.channels * 3))).info().speakers, one.found)
        << one.container << ", " << one.channels << " channels";
    if (one.asked != 0) {
      EXPECT_EQ(names_speakers(one.container, one.asked), one.asked == one.found) << one.asked;
    }
  }
  // What would be read as another layout.
  for (const auto& [container, mask] : {std::pair{CORVIN_DSF, 1u},
                                        {CORVIN_DSF, 0x9u},
                                        {CORVIN_DSF, 0x60fu},
                                        {CORVIN_DSDIFF, 1u},
                                        {CORVIN_ONE_BIT, 2u},
                                        {CORVIN_ONE_BIT, 0x30u}}) {
    WriterSettings settings =
        writer_settings(container, static_cast<std::uint32_t>(std::popcount(mask)));
    settings.speakers = mask;
    EXPECT_EQ(status_of([&] { file_of(settings, {}); }), CORVIN_E_UNSUPPORTED) << mask;
    EXPECT_FALSE(names_speakers(container, mask));
  }
  EXPECT_FALSE(names_speakers(CORVIN_DSDIFF, 0));
}

std::uint64_t number(const Bytes& file, std::size_t at, bool big) {
  return formats::Load<std::uint64_t>(big ? ByteOrder::kBig : ByteOrder::kLittle, &file[at]);
}

// With an odd count of bytes of sound and an odd tag. Sizes of chunks that do not fit each other
// would be told as warnings.
TEST(RoundTrip, TagsComeBackAndHeadersStateTrueSizes) {
  DSD_TAG tag{};
  std::strcpy(tag.title, "T\xc3\xaftle");
  tag.year = 1999;
  for (const std::uint32_t channels : {1u, 3u}) {
    for (const corvin_container container : kContainers) {
      MemoryFile file(file_of(writer_settings(container, channels), Bytes(channels * 5), 40, &tag));
      EXPECT_EQ(file.warnings(), std::vector<std::string>{});
      DSD_TAG back{};
      file.tags(back);
      EXPECT_EQ(back.format, static_cast<std::uint32_t>(container));
      EXPECT_STREQ(back.title, container == CORVIN_ONE_BIT ? "" : tag.title);
      EXPECT_EQ(back.year, container == CORVIN_ONE_BIT ? 0 : 1999);
      DSDTagClear(&back);
      const std::size_t size = file.bytes.size();
      if (container == CORVIN_DSF) {
        EXPECT_EQ(number(file.bytes, 12, false), size);
        EXPECT_EQ(number(file.bytes, 20, false), 92u + channels * 4096);
        EXPECT_EQ(number(file.bytes, 84, false), 12u + channels * 4096);
        EXPECT_EQ(file.bytes[92 + 4095], 0);
      } else if (container == CORVIN_DSDIFF) {
        EXPECT_EQ(number(file.bytes, 4, true), size - 12);
        EXPECT_EQ(size % 2, 0u);
        EXPECT_EQ(number(file.bytes, 36, true), 4 + 16 + 14 + 4 * channels + 32);
      } else {
        EXPECT_EQ(size, 2048 + 5 * channels);
        EXPECT_EQ(number(file.bytes, 12, true) >> 32, size);
      }
    }
  }
}

// Through every pair of containers, back to the file it began with.
TEST(RoundTrip, CopiesBetweenContainers) {
  Random random(6);
  const Bytes sound = random.bytes(2 * 12345);
  for (const corvin_container from : kContainers) {
    for (const corvin_container to : kContainers) {
      MemoryFile file(file_of(writer_settings(from, 2), sound));
      MemoryStream target;
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
    EXPECT_EQ(testing::ReadFile(path), (Bytes{'o', 'l', 'd', 'e', 'r'}));
  }
  EXPECT_EQ(testing::ReadFile(path).size(), 5u);
  EXPECT_EQ(files(), 2);
  {
    Writer writer(link.c_str(), writer_settings(CORVIN_DSF, 2));
    writer.write(sound.data(), 5000);
    writer.finish(40000);
    EXPECT_EQ(corvin_writer_write(writer.handle(), sound.data(), 1), CORVIN_E_STATE);
    EXPECT_EQ(corvin_writer_finish(writer.handle(), 40000), CORVIN_E_STATE);
  }
  EXPECT_TRUE(testing::ReadFile(path) == file_of(writer_settings(CORVIN_DSF, 2), sound));
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(files(), 2);

  for (const std::string& bad : {folder.string(), (folder / "none" / "x").string(),
                                 std::string("/dev/null"), std::string()}) {
    EXPECT_EQ(status_of([&] { Writer made(bad.c_str(), WriterSettings()); }), CORVIN_E_WRITE)
        << bad;
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
      const int status = status_of([&] {
        Writer writer(older.path(), WriterSettings());
        const Bytes sound(2 * 1000);
        for (int i = 0; i < 200; ++i) writer.write(sound.data(), 1000);
        writer.finish(1600000);
      });
      _exit(-status);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == -CORVIN_E_WRITE) << limit;
    EXPECT_EQ(testing::ReadFile(older.path()).size(), 1u);
  }
}

TEST(WriterCallbacks, EveryWriteMayFail) {
  const Bytes sound(2 * 70000);
  for (const corvin_container container : kContainers) {
    int status = CORVIN_E_WRITE;
    for (int good = 0; status != CORVIN_OK; ++good) {
      MemoryStream stream;
      stream.calls_left = good;
      status = status_of([&] {
        Writer writer(stream.callbacks(), writer_settings(container, 2));
        writer.write(sound.data(), 70000);
        writer.finish(560000);
      });
      EXPECT_TRUE(status != CORVIN_OK || good >= 4);
      ASSERT_TRUE(status == CORVIN_E_WRITE || status == CORVIN_OK) << good;
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
    return status_of([&] { Writer made(callbacks, settings); });
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

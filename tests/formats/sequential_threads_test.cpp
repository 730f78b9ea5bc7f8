// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Files that cannot seek: what is read from them once, in order, is what the same file holds on a
// disk, up to where it ends; and what is written to them.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <thread>

#include "tests/support/dsd_files.h"
#include "tests/support/sound_files.h"
#include "tests/support/temp_file.h"

namespace corvin::studio {
namespace {

// A stream without end or positions, some bytes at a time.
struct Pipe : MemoryStream {
  explicit Pipe(Bytes content) : MemoryStream(std::move(content)) { most_at_once = 7777; }
  corvin_stream callbacks() {
    corvin_stream stream = MemoryStream::callbacks();
    stream.seek = nullptr;
    stream.length = nullptr;
    return stream;
  }
};
struct PipeFile : Pipe, File {
  explicit PipeFile(Bytes content) : Pipe(std::move(content)), File(Pipe::callbacks()) {}
};

// Frames of a conversion, and what it ended with.
Bytes converted(File& file, const ConvertSettings& settings, corvin_convert_report& report,
                int expected = CORVIN_OK) {
  struct Out {
    Bytes bytes;
    std::size_t width;
  } out = {
      {},
      (settings.channel_map_count != 0 ? settings.channel_map_count : file.info().channels) * 3};
  corvin_pcm_sink sink = {};
  sink.size = sizeof sink;
  sink.user = &out;
  sink.write = [](void* user, const void* frames, std::size_t count) {
    Out& self = *static_cast<Out*>(user);
    const auto* from = static_cast<const std::uint8_t*>(frames);
    self.bytes.insert(self.bytes.end(), from, from + count * self.width);
    return 0;
  };
  report = empty_report();
  EXPECT_EQ(corvin_convert_to_pcm(file.handle(), &settings, &sink, &report), expected);
  return out.bytes;
}

Bytes copied(File& file, const ConvertSettings& settings) {
  const std::uint32_t channels = settings.channel_map_count != 0
                                     ? static_cast<std::uint32_t>(settings.channel_map_count)
                                     : file.info().channels;
  MemoryStream target;
  Writer writer(target.callbacks(), writer_settings(CORVIN_DSF, channels));
  convert_copy(file, writer, settings);
  return target.bytes;
}

// All, a stretch within bytes, channels in another order.
std::vector<ConvertSettings> ways(const std::vector<std::uint32_t>& map) {
  std::vector<ConvertSettings> all(4);
  all[1].begin_sample = 200001;
  all[1].sample_count = 300000;
  all[2].channel_map = map.data();
  all[2].channel_map_count = map.size();
  all[3].threads = 2;
  return all;
}

TEST(Sequential, IsTheFileOnADisk) {
  Random random(80);
  for (const corvin_container container : kContainers) {
    for (const std::uint32_t channels : {1u, 2u, 6u}) {
      SCOPED_TRACE(::testing::Message() << container << ", " << channels << " channels");
      Tags tags;
      set_text(tags.title, "Title");
      const Bytes sound = random.bytes(70001 * channels);
      Bytes whole = file_of(writer_settings(container, channels), sound, 70001 * 8 - 3,
                            container == CORVIN_ONE_BIT ? nullptr : &tags);
      MemoryFile file(whole);
      PipeFile pipe(whole);
      const corvin_file_info on_disk = file.info();
      corvin_file_info info = pipe.info();
      EXPECT_EQ(info.sequential, 1u);
      EXPECT_EQ(on_disk.sequential, 0u);
      info.sequential = 0;
      // What stands behind the sound has not been seen.
      EXPECT_LE(info.chunks, on_disk.chunks);
      for (std::uint32_t i = 0; i < info.chunks; ++i)
        EXPECT_EQ(pipe.chunks()[i].offset, file.chunks()[i].offset);
      info.chunks = on_disk.chunks;
      EXPECT_EQ(std::memcmp(&info, &on_disk, sizeof info), 0);
      EXPECT_TRUE(pipe.warnings().empty());
      EXPECT_EQ(status_of([&] { pipe.tags(); }), CORVIN_E_UNSUPPORTED);
      EXPECT_EQ(status_of([&] { pipe.all_tags(); }), CORVIN_E_UNSUPPORTED);
      EXPECT_EQ(status_of([&] { pipe.seek(0); }), CORVIN_E_UNSUPPORTED);
      EXPECT_TRUE(read_all(pipe, CORVIN_MSB_FIRST, &random) == read_all(file));
      EXPECT_LE(pipe.position, whole.size() - (container == CORVIN_ONE_BIT ? 0 : 10));
      EXPECT_EQ(status_of([&] { copied(pipe, {}); }), CORVIN_E_STATE);

      const std::vector<std::uint32_t> map = {channels - 1, 0};
      for (const ConvertSettings& settings : ways(map)) {
        corvin_convert_report report;
        corvin_convert_report same;
        PipeFile once(whole);
        EXPECT_TRUE(converted(once, settings, report) == converted(file, settings, same));
        EXPECT_EQ(report.samples, same.samples);
        EXPECT_EQ(report.missing, 0u);
        converted(once, settings, report, CORVIN_E_STATE);
        PipeFile again(whole);
        EXPECT_TRUE(copied(again, settings) == copied(file, settings));
      }
    }
  }
}

TEST(Sequential, EndsWhereItIsCut) {
  Random random(81);
  for (const corvin_container container : kContainers) {
    const Bytes sound = random.bytes(2 * 400000);
    Bytes whole = file_of(writer_settings(container, 2), sound);
    for (const std::size_t lost : {1u, 5001u, 300000u, 700000u}) {
      SCOPED_TRACE(::testing::Message() << container << ", " << lost);
      const Bytes cut(whole.begin(), whole.end() - static_cast<long>(lost));
      MemoryFile file(cut);
      const std::uint64_t missing = file.info().stated_samples - file.info().samples;
      const std::vector<std::uint32_t> map = {1};
      for (ConvertSettings settings : ways(map)) {
        if (settings.sample_count != 0) settings.sample_count = 0;
        if (settings.begin_sample > file.info().samples) continue;
        corvin_convert_report report;
        corvin_convert_report same;
        PipeFile once(cut);
        EXPECT_TRUE(once.warnings().empty());
        EXPECT_EQ(once.info().samples, file.info().stated_samples);
        EXPECT_TRUE(converted(once, settings, report) == converted(file, settings, same));
        EXPECT_EQ(report.missing, missing);
        EXPECT_EQ(once.info().samples, file.info().samples);
        EXPECT_EQ(once.warnings().size(), missing == 0 ? 0u : 1u);
        PipeFile again(cut);
        EXPECT_TRUE(copied(again, settings) == copied(file, settings));
        EXPECT_EQ(again.info().samples, file.info().samples);
      }
      PipeFile read(cut);
      file.seek(0);
      EXPECT_TRUE(read_all(read, CORVIN_LSB_FIRST, &random) == read_all(file, CORVIN_LSB_FIRST));
    }
    // A stretch that ends before the cut misses nothing; a failure is no end.
    PipeFile early(Bytes(whole.begin(), whole.end() - 700000));
    ConvertSettings settings;
    settings.sample_count = 10000;
    corvin_convert_report report;
    converted(early, settings, report);
    EXPECT_EQ(report.missing, 0u);
    PipeFile failing(whole);
    failing.calls_left = 50;
    converted(failing, {}, report, CORVIN_E_READ);
    EXPECT_EQ(report.samples + report.missing, 8 * 400000u);
  }
}

TEST(Sequential, FifosAreRead) {
  Random random(82);
  const Bytes whole = file_of(writer_settings(CORVIN_DSF, 2), random.bytes(2 * 300000));
  const testing::TempFile fifo;
  ASSERT_EQ(mkfifo(fifo.path(), 0600), 0);
  std::thread writer([&] {
    std::ofstream to(fifo.path(), std::ios::binary);
    to.write(reinterpret_cast<const char*>(whole.data()), static_cast<long>(whole.size()));
  });
  {
    File file(fifo.path());
    EXPECT_EQ(file.info().sequential, 1u);
    MemoryFile model(whole);
    EXPECT_TRUE(read_all(file) == read_all(model));
    std::uint8_t rest;
    EXPECT_EQ(file.read(&rest, 1), 0u);
  }
  writer.join();
}

TEST(Sequential, KnownLengthsAreWrittenInOneGo) {
  Random random(83);
  TagSet tags;
  tags.set("TITLE", "Title");
  for (const corvin_container container : kContainers) {
    for (const std::uint64_t samples : {1u, 8u, 800003u}) {
      SCOPED_TRACE(::testing::Message() << container << ", " << samples);
      const Bytes sound = random.bytes((samples + 7) / 8 * 3);
      const auto written = [&](MemoryStream& target, const corvin_stream& stream,
                               std::uint64_t announced) {
        WriterSettings settings = writer_settings(container, 3);
        settings.samples = announced;
        Writer writer(stream, settings);
        if (container != CORVIN_ONE_BIT) writer.set_all_tags(tags);
        for (std::size_t at = 0; at < sound.size(); at += 3 * 5000) {
          writer.write(sound.data() + at, std::min<std::size_t>(5000, (sound.size() - at) / 3));
        }
        writer.finish(samples);
        return target.bytes;
      };
      MemoryStream seekable;
      const Bytes expected = written(seekable, seekable.callbacks(), 0);
      MemoryStream again;
      EXPECT_TRUE(written(again, again.callbacks(), samples) == expected);
      Pipe pipe({});
      EXPECT_TRUE(written(pipe, pipe.callbacks(), samples) == expected);
      EXPECT_EQ(status_of([&] { written(pipe, pipe.callbacks(), 0); }), CORVIN_E_ARGUMENT);

      MemoryFile file(expected);
      WriterSettings settings = writer_settings(CORVIN_DSF, 3);
      settings.samples = file.info().samples;
      Pipe copy({});
      Writer writer(copy.callbacks(), settings);
      convert_copy(file, writer);
      EXPECT_TRUE(copy.bytes == copied(file, {}));
      ++settings.samples;
      Writer other(copy.callbacks(), settings);
      EXPECT_EQ(status_of([&] { convert_copy(file, other); }), CORVIN_E_STATE);
    }
  }
  WriterSettings settings = writer_settings(CORVIN_DSDIFF, 1);
  settings.samples = 24;
  Pipe pipe({});
  Writer writer(pipe.callbacks(), settings);
  writer.write("12", 2);
  EXPECT_EQ(status_of([&] { writer.set_all_tags(tags); }), CORVIN_E_STATE);
  EXPECT_EQ(status_of([&] { writer.write("12", 2); }), CORVIN_E_STATE);
  EXPECT_EQ(status_of([&] { writer.finish(16); }), CORVIN_E_STATE);
  writer.write("3", 1);
  writer.finish(24);
  EXPECT_EQ(PipeFile(pipe.bytes).info().samples, 24u);
}

TEST(Sequential, RefusesWhatNeedsTheEndOrTheMiddle) {
  testing::DsdiffOptions unsized;
  unsized.sound_size = 0;
  PipeFile endless(testing::DsdiffFile(1, 2822400, Bytes(1000, kIdle), unsized));
  EXPECT_EQ(endless.info().readable, CORVIN_E_UNSUPPORTED);
  EXPECT_NE(endless.problem().find("size"), std::string::npos);
  testing::DsfOptions blocks;
  blocks.block_bytes = 1 << 20;
  PipeFile large(testing::DsfFile(2, 2822400, Bytes(1000, kIdle), blocks));
  EXPECT_EQ(large.info().readable, CORVIN_E_UNSUPPORTED);
  testing::DsdiffOptions compression;
  compression.compression_type = "DST ";
  PipeFile compressed(testing::DsdiffFile(1, 2822400, Bytes(1000), compression));
  EXPECT_EQ(compressed.info().readable, CORVIN_E_COMPRESSED);

  const Bytes good = file_of(writer_settings(CORVIN_DSF, 1), Bytes(1000, kIdle));
  MemoryFile file(good);
  PipeFile pipe(good);
  corvin_file* const around[] = {pipe.handle()};
  ConvertSettings settings;
  settings.next = around;
  settings.next_count = 1;
  corvin_convert_report report;
  converted(file, settings, report, CORVIN_E_UNSUPPORTED);
  settings.next_count = 0;
  DecoderSettings mono;
  mono.channels = 1;
  Decoder decoder(mono);
  EXPECT_EQ(status_of([&] { pipe.seek_decoder(decoder, 0); }), CORVIN_E_UNSUPPORTED);
  converted(pipe, settings, report);  // none of that took anything from it
  for (std::size_t bytes = 0; bytes < 92; bytes += 7) {
    PipeFile short_one(Bytes(good.begin(), good.begin() + 4 + static_cast<long>(bytes)));
    EXPECT_EQ(short_one.info().samples, bytes < 88 ? 0u : 8000u) << bytes;
  }
}

}  // namespace
}  // namespace corvin::studio

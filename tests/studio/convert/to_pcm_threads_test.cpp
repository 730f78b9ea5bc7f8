// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Whole conversions: what the decoder makes of the sound, told and ended as promised.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cmath>
#include <limits>

#include "tests/support/dsd_files.h"
#include "tests/support/sound_files.h"
#include "tests/support/temp_file.h"

namespace corvin::studio {
namespace {

struct Sink {
  Bytes out;
  corvin_pcm_format format = {};
  std::size_t frame_bytes = 0;
  std::uint64_t most_frames = std::numeric_limits<std::uint64_t>::max();
  std::uint64_t frames = 0;

  corvin_pcm_sink callbacks() {
    corvin_pcm_sink sink = {};
    sink.size = sizeof sink;
    sink.user = this;
    sink.begin = [](void* user, const corvin_pcm_format* format) {
      Sink& self = *static_cast<Sink*>(user);
      self.format = *format;
      constexpr std::size_t kBytes[] = {2, 3, 4, 4, 8, 3};
      self.frame_bytes = format->channels * kBytes[format->format];
      return 0;
    };
    sink.write = [](void* user, const void* frames, std::size_t count) {
      Sink& self = *static_cast<Sink*>(user);
      const auto* bytes = static_cast<const std::uint8_t*>(frames);
      self.out.insert(self.out.end(), bytes, bytes + count * self.frame_bytes);
      self.frames += count;
      return self.frames > self.most_frames ? 1 : 0;
    };
    return sink;
  }
};

// Everything at once, and its status.
int convert(File& file, Sink& sink, const ConvertSettings& settings,
            corvin_convert_report* report = nullptr) {
  const corvin_pcm_sink callbacks = sink.callbacks();
  return corvin_convert_to_pcm(file.handle(), &settings, &callbacks, report);
}

// From every container the decoder's own bytes, whoever does the work.
TEST(Convert, IsTheDecoderOverTheFile) {
  Random random(20);
  for (const std::uint32_t channels : {1u, 2u, 6u}) {
    const std::size_t bytes = 150001;
    const Bytes sound = random.bytes(bytes * channels);
    for (const std::uint32_t format : {CORVIN_S16, CORVIN_S24, CORVIN_F32}) {
      ConvertSettings settings;
      settings.pcm_rate = 88200;
      settings.format = format;
      settings.dither = format == CORVIN_S16 ? CORVIN_DITHER_SHAPED : CORVIN_DITHER_TPDF;
      settings.seed = 9;
      settings.gain_db = -3;
      DecoderSettings decoder;
      decoder.channels = channels;
      decoder.pcm_rate = settings.pcm_rate;
      decoder.format = settings.format;
      decoder.dither = settings.dither;
      decoder.seed = settings.seed;
      decoder.gain_db = settings.gain_db;
      const Bytes expected = decode(decoder, sound);
      for (const corvin_container container : kContainers) {
        MemoryFile file(file_of(writer_settings(container, channels), sound));
        for (const std::uint32_t threads : {0u, 2u}) {
          settings.threads = threads;
          Sink sink;
          const corvin_convert_report report = convert_to_pcm(file, sink.callbacks(), settings);
          EXPECT_TRUE(sink.out == expected)
              << container << ", " << channels << " channels, format " << format << ", " << threads;
          EXPECT_EQ(report.frames, bytes * 8 / 32);
          EXPECT_EQ(sink.format.frames, report.frames);
          EXPECT_EQ(sink.format.channels, channels);
          EXPECT_EQ(report.gain_db, -3);
        }
      }
    }
  }
}

TEST(Convert, OddCountsAndPaddingThatDoesNotSound) {
  // A constant level of full scale: what is appended or missing would show at the end.
  const Bytes sound(1000, 0x77);
  for (const std::uint64_t samples : {7993u, 8000u}) {
    DecoderSettings decoder;
    decoder.channels = 1;
    decoder.length = samples;
    Bytes padded = file_of(writer_settings(CORVIN_DSF, 1), sound, samples);
    std::fill(padded.begin() + 92 + 1000, padded.end(), 0xff);
    MemoryFile file(padded);
    Sink sink;
    convert_to_pcm(file, sink.callbacks());
    EXPECT_TRUE(sink.out == decode(decoder, sound)) << samples;
  }
  for (const corvin_container container : kContainers) {
    for (const std::size_t bytes : {0u, 1u, 3u}) {
      MemoryFile file(file_of(writer_settings(container, 1), Bytes(bytes, 0x77)));
      Sink sink;
      EXPECT_EQ(convert_to_pcm(file, sink.callbacks()).frames, bytes / 4);
    }
  }
}

TEST(Convert, ReportsPeakAndClipsOfWhatCameOut) {
  Random random(21);
  Bytes sound;
  for (int i = 0; i < 60000; ++i) {
    sound.push_back(i / 6000 % 2 == 0 ? 0x77 : static_cast<std::uint8_t>(random()));
  }
  MemoryFile file(file_of(writer_settings(CORVIN_DSDIFF, 1), sound));
  ConvertSettings settings;
  settings.format = CORVIN_F64;
  settings.gain_db = 3;
  Sink sink;
  const corvin_convert_report report = convert_to_pcm(file, sink.callbacks(), settings);
  double peak = 0;
  std::uint64_t beyond = 0;
  for (const double sample : channel_of(sink.out, 1, 0)) {
    peak = std::max(peak, std::fabs(sample));
    const double steps = sample * 32768;
    if (steps > 32767 || steps < -32768) ++beyond;
  }
  EXPECT_NEAR(report.peak, peak, 1e-12);
  EXPECT_GT(beyond, 1000u);
  settings.format = CORVIN_S16;
  settings.dither = CORVIN_DITHER_NONE;
  Sink integers;
  const corvin_convert_report clipped = convert_to_pcm(file, integers.callbacks(), settings);
  EXPECT_EQ(clipped.clips, beyond);
  EXPECT_NEAR(clipped.peak, peak, 1e-12);
}

struct Progress {
  std::vector<std::uint64_t> told;
  std::uint64_t total = 0;
  std::size_t cancel_after = std::numeric_limits<std::size_t>::max();
};

int note_progress(void* user, std::uint64_t done, std::uint64_t total) {
  auto& progress = *static_cast<Progress*>(user);
  progress.told.push_back(done);
  progress.total = total;
  return progress.told.size() > progress.cancel_after ? 1 : 0;
}

TEST(Convert, TellsProgressAndEndsWhereverItIsAsked) {
  const std::size_t bytes = 2000000;
  MemoryFile file(file_of(writer_settings(CORVIN_DSF, 1), Bytes(bytes, kIdle)));
  for (const std::uint32_t threads : {0u, 2u}) {
    ConvertSettings settings;
    settings.threads = threads;
    settings.progress = note_progress;
    Progress whole;
    settings.progress_user = &whole;
    Sink all;
    convert_to_pcm(file, all.callbacks(), settings);
    EXPECT_EQ(whole.total, bytes * 8);
    EXPECT_EQ(whole.told.back(), bytes * 8);
    EXPECT_TRUE(std::is_sorted(whole.told.begin(), whole.told.end()));
    EXPECT_GT(whole.told.size(), 4u);

    for (std::size_t after = 0; after < whole.told.size(); ++after) {
      Progress progress;
      progress.cancel_after = after;
      settings.progress_user = &progress;
      Sink sink;
      corvin_convert_report report = empty_report();
      EXPECT_EQ(convert(file, sink, settings, &report), CORVIN_E_CANCELLED);
      EXPECT_EQ(report.frames, sink.frames);
      EXPECT_TRUE(std::equal(sink.out.begin(), sink.out.end(), all.out.begin()));
    }
    settings.progress = nullptr;
    for (const std::uint64_t most : {0u, 10000u, 200000u}) {
      Sink sink;
      sink.most_frames = most;
      EXPECT_EQ(convert(file, sink, settings), CORVIN_E_WRITE);
    }
    for (const int good : {0, 2, 5}) {
      MemoryFile failing(file.bytes);
      failing.calls_left = good;
      Sink sink;
      EXPECT_EQ(convert(failing, sink, settings), CORVIN_E_READ) << good;
    }
  }
}

// Four minutes, 81 MiB, after two seconds: the process grows by no more than a sanitizer keeps
// back.
TEST(Convert, MemoryDoesNotGrowWithTheLength) {
  const auto megabytes_after = [](std::uint64_t seconds) {
    testing::DsdiffOptions options;
    options.sound_size = seconds * 352800;
    const Bytes header = testing::DsdiffFile(1, 2822400, {}, options);
    const testing::TempFile source(header);
    std::filesystem::resize_file(source.path(), header.size() + *options.sound_size);
    File file(source.path());
    corvin_pcm_sink sink = {};
    sink.size = sizeof sink;
    sink.write = [](void*, const void*, std::size_t) { return 0; };
    ConvertSettings settings;
    settings.threads = 2;
    EXPECT_EQ(convert_to_pcm(file, sink, settings).frames, seconds * 44100);
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024;
  };
  const double before = megabytes_after(2);
  EXPECT_LT(megabytes_after(240) - before, 32);
}

TEST(Convert, RefusesWhatItCannotDo) {
  const auto status = [](std::uint32_t rate, auto change) {
    MemoryFile file(file_of(writer_settings(CORVIN_DSF, 1, rate), Bytes(100)));
    ConvertSettings settings;
    change(settings);
    Sink sink;
    return convert(file, sink, settings);
  };
  using S = ConvertSettings;
  EXPECT_EQ(status(2822400, [](S&) {}), CORVIN_OK);
  EXPECT_EQ(status(3000000, [](S&) {}), CORVIN_E_UNSUPPORTED);
  EXPECT_EQ(status(2822400, [](S& s) { s.pcm_rate = 44101; }), CORVIN_E_UNSUPPORTED);
  EXPECT_EQ(status(2822400, [](S& s) { s.format = 9; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status(2822400, [](S& s) { s.size = 3; }), CORVIN_E_ARGUMENT);
  Sink sink;
  const corvin_pcm_sink callbacks = sink.callbacks();
  EXPECT_EQ(corvin_convert_to_pcm(nullptr, nullptr, &callbacks, nullptr), CORVIN_E_ARGUMENT);
}

}  // namespace
}  // namespace corvin::studio

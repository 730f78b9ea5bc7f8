// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Whole conversions: what the decoder makes of the sound, told and ended as promised.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "tests/studio_files/sound_files.h"
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
      constexpr std::size_t kBytes[] = {2, 3, 4, 4, 8};
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

corvin_convert_report empty_report() {
  corvin_convert_report report = {};
  report.size = sizeof report;
  return report;
}

// From every container the decoder's own bytes, whoever does the work.
TEST(Convert, IsTheDecoderOverTheFile) {
  Random random(20);
  for (const std::uint32_t channels : {1u, 2u, 6u}) {
    const std::size_t bytes = 150001;
    const Bytes sound = random.bytes(bytes * channels);
    for (const std::uint32_t format : {CORVIN_S16, CORVIN_S24, CORVIN_F32}) {
      DecoderSettings decoder;
      decoder.channels = channels;
      decoder.pcm_rate = 88200;
      decoder.format = format;
      decoder.dither = format == CORVIN_S16 ? CORVIN_DITHER_SHAPED : CORVIN_DITHER_TPDF;
      decoder.seed = 9;
      decoder.gain_db = -3;
      const Bytes expected = decode(decoder, sound);
      ConvertSettings settings;
      settings.pcm_rate = 88200;
      settings.format = format;
      settings.dither = decoder.dither;
      settings.seed = 9;
      settings.gain_db = -3;
      for (const corvin_container container : kContainers) {
        MemoryStream stream(file_of(writer_settings(container, channels), sound));
        const corvin_stream callbacks = stream.callbacks();
        File file(callbacks);
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
    decoder.format = CORVIN_F64;
    MemoryStream stream(file_of(writer_settings(CORVIN_DSF, 1), sound, samples));
    for (std::size_t i = 92 + 1000; i < stream.bytes.size(); ++i) stream.bytes[i] = 0xff;
    const corvin_stream callbacks = stream.callbacks();
    File file(callbacks);
    ConvertSettings settings;
    settings.format = CORVIN_F64;
    Sink sink;
    convert_to_pcm(file, sink.callbacks(), settings);
    EXPECT_TRUE(sink.out == decode(decoder, sound)) << samples;
  }
  for (const corvin_container container : kContainers) {
    for (const std::size_t bytes : {0u, 1u, 3u}) {
      MemoryStream stream(file_of(writer_settings(container, 1), Bytes(bytes, 0x77)));
      const corvin_stream callbacks = stream.callbacks();
      File file(callbacks);
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
  MemoryStream stream(file_of(writer_settings(CORVIN_DSDIFF, 1), sound));
  const corvin_stream callbacks = stream.callbacks();
  File file(callbacks);
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
  MemoryStream stream(file_of(writer_settings(CORVIN_DSF, 1), Bytes(bytes, 0x69)));
  const corvin_stream callbacks = stream.callbacks();
  File file(callbacks);
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
      const corvin_pcm_sink sink_callbacks = sink.callbacks();
      EXPECT_EQ(corvin_convert_to_pcm(file.handle(), &settings, &sink_callbacks, &report),
                CORVIN_E_CANCELLED);
      EXPECT_EQ(report.frames, sink.frames);
      EXPECT_TRUE(std::equal(sink.out.begin(), sink.out.end(), all.out.begin()));
    }
    for (const std::uint64_t most : {0u, 10000u, 200000u}) {
      settings.progress = nullptr;
      Sink sink;
      sink.most_frames = most;
      const corvin_pcm_sink sink_callbacks = sink.callbacks();
      EXPECT_EQ(corvin_convert_to_pcm(file.handle(), &settings, &sink_callbacks, nullptr),
                CORVIN_E_WRITE);
    }
  }
}

// Four minutes, 81 MiB, after two seconds: the process grows by no more than a sanitizer keeps back.
TEST(Convert, MemoryDoesNotGrowWithTheLength) {
  struct Silence {
    Bytes header;
    std::uint64_t bytes, position = 0;
  };
  const auto megabytes_after = [](std::uint64_t seconds) {
    const std::uint64_t sound = seconds * 352800 / 4096 * 4096;
    Silence silence = {file_of(writer_settings(CORVIN_DSF, 1), Bytes()), 92 + sound};
    for (int i = 0; i < 8; ++i) {
      silence.header[64 + i] = static_cast<std::uint8_t>(sound * 8 >> 8 * i);
      silence.header[84 + i] = static_cast<std::uint8_t>((12 + sound) >> 8 * i);
    }
    corvin_stream stream = {};
    stream.size = sizeof stream;
    stream.user = &silence;
    stream.seek = [](void* user, std::uint64_t offset) {
      static_cast<Silence*>(user)->position = offset;
      return 0;
    };
    stream.length = [](void* user) {
      return static_cast<std::int64_t>(static_cast<Silence*>(user)->bytes);
    };
    stream.read = [](void* user, void* to, std::size_t count) {
      auto& self = *static_cast<Silence*>(user);
      std::memset(to, 0x96, count);
      if (self.position < self.header.size()) {
        const auto at = static_cast<std::size_t>(self.position);
        std::memcpy(to, &self.header[at], std::min(count, self.header.size() - at));
      }
      self.position += count;
      return static_cast<std::int64_t>(count);
    };
    File file(stream);
    corvin_pcm_sink sink = {};
    sink.size = sizeof sink;
    sink.write = [](void*, const void*, std::size_t) { return 0; };
    ConvertSettings settings;
    settings.threads = 2;
    EXPECT_EQ(convert_to_pcm(file, sink, settings).frames, sound / 8);
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024;
  };
  const double before = megabytes_after(2);
  EXPECT_LT(megabytes_after(240) - before, 32);
}

TEST(Convert, SourcesThatFailInTheMiddle) {
  const Bytes whole = file_of(writer_settings(CORVIN_DSDIFF, 2), Bytes(2 * 1000000, 0x69));
  for (const std::uint32_t threads : {0u, 1u}) {
    for (const int good : {0, 2, 5}) {
      MemoryStream stream(whole);
      const corvin_stream callbacks = stream.callbacks();
      File file(callbacks);
      stream.calls_left = good;
      ConvertSettings settings;
      settings.threads = threads;
      Sink sink;
      const corvin_pcm_sink sink_callbacks = sink.callbacks();
      EXPECT_EQ(corvin_convert_to_pcm(file.handle(), &settings, &sink_callbacks, nullptr),
                CORVIN_E_READ)
          << good;
    }
  }
}

TEST(Convert, RefusesWhatItCannotDo) {
  const auto status = [](corvin_container container, std::uint32_t rate, auto change) {
    MemoryStream stream(file_of(writer_settings(container, 1, rate), Bytes(100)));
    const corvin_stream callbacks = stream.callbacks();
    File file(callbacks);
    ConvertSettings settings;
    change(settings);
    Sink sink;
    const corvin_pcm_sink sink_callbacks = sink.callbacks();
    corvin_convert_report report = empty_report();
    return corvin_convert_to_pcm(file.handle(), &settings, &sink_callbacks, &report);
  };
  using S = ConvertSettings;
  EXPECT_EQ(status(CORVIN_DSF, 2822400, [](S&) {}), CORVIN_OK);
  EXPECT_EQ(status(CORVIN_DSF, 3000000, [](S&) {}), CORVIN_E_UNSUPPORTED);
  EXPECT_EQ(status(CORVIN_DSF, 2822400, [](S& s) { s.pcm_rate = 44101; }), CORVIN_E_UNSUPPORTED);
  EXPECT_EQ(status(CORVIN_DSF, 2822400, [](S& s) { s.format = 9; }), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status(CORVIN_DSF, 2822400, [](S& s) { s.size = 3; }), CORVIN_E_ARGUMENT);
  Sink sink;
  corvin_pcm_sink callbacks = sink.callbacks();
  EXPECT_EQ(corvin_convert_to_pcm(nullptr, nullptr, &callbacks, nullptr), CORVIN_E_ARGUMENT);
}

}  // namespace
}  // namespace corvin::studio

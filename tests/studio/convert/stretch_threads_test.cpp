// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Parts of files: stretches are those of the whole, mapped channels those of a file that has them;
// and what a file that fails in its middle leaves.

#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/sound_files.h"

namespace corvin::studio {
namespace {

struct Output {
  Bytes bytes;
  corvin_pcm_format format = {};
  corvin_convert_report report = empty_report();
};

Output converted(File& file, const ConvertSettings& settings, int expected = CORVIN_OK) {
  Output out;
  corvin_pcm_sink sink = {};
  sink.size = sizeof sink;
  sink.user = &out;
  sink.begin = [](void* user, const corvin_pcm_format* format) {
    static_cast<Output*>(user)->format = *format;
    return 0;
  };
  sink.write = [](void* user, const void* frames, std::size_t count) {
    Output& self = *static_cast<Output*>(user);
    const auto* from = static_cast<const std::uint8_t*>(frames);
    self.bytes.insert(self.bytes.end(), from, from + count * frame_bytes(self.format));
    return 0;
  };
  EXPECT_EQ(corvin_convert_to_pcm(file.handle(), &settings, &sink, &out.report), expected);
  return out;
}

Bytes channels_of(const Bytes& sound, std::size_t channels, const std::vector<std::uint32_t>& map) {
  Bytes result;
  for (std::size_t at = 0; at < sound.size(); at += channels) {
    for (const std::uint32_t channel : map) result.push_back(sound[at + channel]);
  }
  return result;
}

// Interleaved bytes of the samples from `begin` on, the last one filled up with silence; one sample
// at a time.
Bytes samples_of(const Bytes& sound, std::size_t channels, std::uint64_t begin,
                 std::uint64_t count) {
  Bytes result((count + 7) / 8 * channels);
  for (std::size_t i = 0; i < 8 * result.size(); ++i) {
    const std::size_t sample = i / 8 / channels * 8 + i % 8;
    const std::size_t channel = i / 8 % channels;
    const std::size_t from = begin + sample;
    const int bit = sample < count ? sound[from / 8 * channels + channel] >> (7 - from % 8) & 1
                                   : kIdle >> (7 - sample % 8) & 1;
    std::uint8_t& byte = result[sample / 8 * channels + channel];
    byte = static_cast<std::uint8_t>(byte << 1 | bit);
  }
  return result;
}

constexpr std::uint64_t kSamples = 800003;
struct Range {
  std::uint64_t begin, count;
};
// Within a byte, within a block of a DSF file, over several, to the end, all, and nothing.
constexpr Range kRanges[] = {{5, 2},          {32769, 4000}, {98304, 65536},
                             {40007, 500000}, {700000, 0},   {kSamples - 9, 9},
                             {0, 12345},      {0, 0},        {kSamples, 0}};

TEST(ConvertStretch, FramesAreThoseOfTheWhole) {
  constexpr struct {
    std::uint32_t dsd, pcm;
    corvin_sample_format format;
    corvin_dither dither;
    corvin_phase phase;
    std::uint64_t place;
  } kCases[] = {
      {2822400, 44100, CORVIN_S16, CORVIN_DITHER_SHAPED, CORVIN_LINEAR_PHASE, 0},
      {2822400, 88200, CORVIN_F64, CORVIN_DITHER_NONE, CORVIN_MINIMUM_PHASE, 3},
      {5644800, 96000, CORVIN_S20, CORVIN_DITHER_TPDF, CORVIN_LINEAR_PHASE, 1234567},
  };
  Random random(70);
  for (const auto& test : kCases) {
    const Bytes sound = random.bytes(2 * (kSamples + 7) / 8 * 2);
    MemoryFile before(
        file_of(writer_settings(CORVIN_DSF, 2, test.dsd), Bytes(4096, 0x77), 8 * 2048));
    corvin_file* const around[] = {before.handle()};
    for (const corvin_container container : kContainers) {
      MemoryFile file(file_of(writer_settings(container, 2, test.dsd),
                              Bytes(sound.begin(), sound.begin() + (kSamples + 7) / 8 * 2),
                              kSamples));
      ConvertSettings settings;
      settings.pcm_rate = test.pcm;
      settings.format = test.format;
      settings.dither = test.dither;
      settings.phase = test.phase;
      settings.first_sample = test.place;
      if (test.place > 1000) {
        settings.previous = settings.next = around;
        settings.previous_count = settings.next_count = 1;
      }
      const Output whole = converted(file, settings);
      DecoderSettings rates;
      rates.dsd_rate = test.dsd;
      rates.pcm_rate = test.pcm;
      const Decoder decoder(rates);
      const std::uint64_t samples = file.info().samples;
      for (const Range& range : kRanges) {
        settings.threads = range.begin % 2 == 0 ? 0 : 2;
        settings.begin_sample = range.begin;
        settings.sample_count = range.count;
        const std::uint64_t end = range.count == 0 ? samples : range.begin + range.count;
        const std::uint64_t first = decoder.frames(test.place);
        const std::uint64_t from = decoder.frames(test.place + range.begin) - first;
        const std::uint64_t to = decoder.frames(test.place + end) - first;
        SCOPED_TRACE(::testing::Message() << test.dsd << " to " << test.pcm << ", container "
                                          << container << ", " << range.begin << " to " << end);
        const Output part = converted(file, settings);
        const auto width = static_cast<std::ptrdiff_t>(frame_bytes(part.format));
        const auto at = whole.bytes.begin();
        EXPECT_TRUE(part.bytes == Bytes(at + static_cast<std::ptrdiff_t>(from) * width,
                                        at + static_cast<std::ptrdiff_t>(to) * width));
        EXPECT_EQ(part.format.frames, to - from);
        EXPECT_EQ(part.report.frames, to - from);
        EXPECT_EQ(part.report.samples, end - range.begin);
        EXPECT_EQ(part.report.missing, 0u);
        if (test.format != CORVIN_F64) continue;
        double peak = 0;
        for (std::size_t c = 0; c < 2; ++c) {
          for (const double one : channel_of(part.bytes, 2, c))
            peak = std::max(peak, std::fabs(one));
        }
        EXPECT_EQ(part.report.peak, peak);
      }
    }
  }
}

TEST(ConvertStretch, MappedChannelsAreThoseOfAFileThatHasThem) {
  constexpr std::uint32_t kChannels = 6;
  Random random(71);
  const Bytes sound = random.bytes(kChannels * 60001);
  struct Case {
    std::vector<std::uint32_t> map;
    std::uint32_t speakers;
  };
  for (const Case& test : {Case{{0, 1}, 3}, Case{{5, 0, 5}, 0}, Case{{2}, 4},
                           Case{{0, 1, 2, 3, 4, 5, 0, 1}, 0}, Case{{1, 3, 4}, 26}}) {
    const auto count = static_cast<std::uint32_t>(test.map.size());
    const Bytes mapped = channels_of(sound, kChannels, test.map);
    MemoryFile model(file_of(writer_settings(CORVIN_DSDIFF, count), mapped));
    for (const corvin_container container : kContainers) {
      auto from = writer_settings(container, kChannels);
      if (container != CORVIN_ONE_BIT) from.speakers = 0x3f;
      MemoryFile file(file_of(from, sound));
      ConvertSettings settings;
      settings.dither = CORVIN_DITHER_SHAPED;
      settings.begin_sample = 1003;
      settings.sample_count = 400000;
      const Bytes expected = converted(model, settings).bytes;
      settings.channel_map = test.map.data();
      settings.channel_map_count = test.map.size();
      const Output out = converted(file, settings);
      EXPECT_TRUE(out.bytes == expected) << container << ", " << count;
      EXPECT_EQ(out.format.channels, count);
      EXPECT_EQ(out.format.speakers, container == CORVIN_ONE_BIT ? 0 : test.speakers);
      EXPECT_EQ(speakers_mapped(0x3f, test.map), test.speakers);

      MemoryStream target;
      Writer writer(target.callbacks(), writer_settings(CORVIN_DSDIFF, count));
      convert_copy(file, writer, settings);
      MemoryFile copy(target.bytes);
      EXPECT_TRUE(read_all(copy) == samples_of(mapped, count, 1003, 400000));
      file.seek(0);  // and hosts read all of its channels again
      EXPECT_TRUE(read_all(file) == sound);
    }
  }
}

TEST(ConvertStretch, CopiesAreExactToTheSample) {
  Random random(72);
  const Bytes sound = random.bytes(2 * ((kSamples + 7) / 8));
  for (const corvin_container from : kContainers) {
    MemoryFile file(file_of(writer_settings(from, 2), sound, kSamples));
    const std::uint64_t samples = file.info().samples;
    const Bytes whole = read_all(file);
    for (const corvin_container to : kContainers) {
      for (const Range& range : kRanges) {
        ConvertSettings settings;
        settings.begin_sample = range.begin;
        settings.sample_count = range.count;
        std::uint64_t told = 0;
        std::uint64_t total = 0;
        MemoryStream target;
        Writer writer(target.callbacks(), writer_settings(to, 2));
        convert_copy(file, writer, settings, [&](std::uint64_t done, std::uint64_t all) {
          told = done;
          total = all;
          return true;
        });
        MemoryFile copy(target.bytes);
        const std::uint64_t count = range.count == 0 ? samples - range.begin : range.count;
        SCOPED_TRACE(::testing::Message()
                     << from << " to " << to << ", " << range.begin << ", " << count);
        EXPECT_EQ(copy.info().samples, to == CORVIN_DSF ? count : (count + 7) / 8 * 8);
        EXPECT_TRUE(read_all(copy) == samples_of(whole, 2, range.begin, count));
        EXPECT_EQ(told, count);
        EXPECT_EQ(total, count);
      }
    }
  }
}

// To another rate a stretch is the encoder over the frames of the whole; one that begins between two
// of these sounds as if it had been cut out before.
TEST(ConvertStretch, AnotherRateBeginsAtTheStretch) {
  constexpr std::uint32_t kFrames = 30000;
  EncoderSettings encoder;
  encoder.channels = 1;
  encoder.format = CORVIN_F64;
  MemoryFile file(file_of(writer_settings(CORVIN_DSF, 1),
                          encode(encoder, as_f64(sine(9000, 44100, 0.5, kFrames)))));
  ConvertSettings settings;
  settings.modulator = CORVIN_MODULATOR_STANDARD;
  settings.pass_hz = 20000;
  settings.stop_hz = 32000;
  settings.sample_count = 64 * 10000 + 3;
  const auto at_double_rate = [&](File& source, const ConvertSettings& with) {
    MemoryStream target;
    Writer writer(target.callbacks(), writer_settings(CORVIN_DSF, 1, 5644800));
    const corvin_convert_report report = convert_dsd_rate(source, writer, with);
    EXPECT_EQ(report.samples, 2 * settings.sample_count);
    EXPECT_EQ(report.finished, 1u);
    return target.bytes;
  };
  settings.begin_sample = 32 * 20000;
  MemoryFile even(at_double_rate(file, settings));
  ConvertSettings decoding = settings;
  decoding.begin_sample = decoding.sample_count = 0;
  decoding.format = CORVIN_F64;
  decoding.pcm_rate = 88200;
  const Bytes pcm = converted(file, decoding).bytes;
  encoder.pcm_rate = 88200;
  encoder.dsd_rate = 5644800;
  encoder.modulator = CORVIN_MODULATOR_STANDARD;
  Bytes frames(pcm.begin() + 8 * 20000, pcm.begin() + 8 * 40000);
  frames.resize(frames.size() + 8);  // the frame that the last samples are not all of
  const Bytes expected = encode(encoder, frames);
  const Bytes made = read_all(even);
  EXPECT_TRUE(std::equal(made.begin(), made.end() - 1, expected.begin()));

  settings.begin_sample += 13;
  MemoryStream cut;
  Writer writer(cut.callbacks(), writer_settings(CORVIN_DSF, 1));
  convert_copy(file, writer, settings);
  MemoryFile alone(cut.bytes);
  MemoryFile odd(at_double_rate(file, settings));
  settings.begin_sample = 0;
  MemoryFile after(at_double_rate(alone, settings));
  const std::vector<double> one = decode_mono(5644800, 44100, read_all(odd));
  const std::vector<double> other = decode_mono(5644800, 44100, read_all(after));
  ASSERT_EQ(one.size(), other.size());
  double worst = 0;
  for (std::size_t i = 2000; i + 2000 < one.size(); ++i) {
    worst = std::max(worst, std::fabs(one[i] - other[i]));
  }
  // Two modulators' noise; a frame beside it would be a tenth of the tone.
  EXPECT_LT(worst, 1e-4);
}

TEST(ConvertStretch, WhatCameBeforeAFailureCanBeKept) {
  Random random(73);
  const std::uint64_t samples = 8 * 1500000;
  const Bytes sound = random.bytes(samples / 8);
  for (const corvin_container container : {CORVIN_DSF, CORVIN_DSDIFF}) {
    const Bytes good = file_of(writer_settings(container, 1), sound);
    for (const bool keeps : {false, true}) {
      for (const std::uint32_t threads : {0u, 2u}) {
        SCOPED_TRACE(::testing::Message() << container << ", " << keeps << ", " << threads);
        ConvertSettings settings;
        settings.keep_damaged = keeps ? 1 : 0;
        settings.threads = threads;
        settings.begin_sample = threads;
        settings.format = CORVIN_F64;
        MemoryFile file(good);
        const Output whole = converted(file, settings);
        file.calls_left = 4;
        const Output part = converted(file, settings, CORVIN_E_READ);
        EXPECT_EQ(part.report.samples + part.report.missing, samples - threads);
        EXPECT_GT(part.report.samples, samples / 10);
        EXPECT_TRUE(!keeps || part.report.frames == (part.report.samples + threads) / 64);
        // Before the transforms that have the end in them, which round otherwise.
        EXPECT_TRUE(std::equal(part.bytes.begin(), part.bytes.end() - (keeps ? 8 * 10000 : 0),
                               whole.bytes.begin()));

        file.calls_left = 3;
        MemoryStream target;
        {
          Writer writer(target.callbacks(), writer_settings(CORVIN_DSF, 1));
          EXPECT_EQ(status_of([&] { convert_copy(file, writer, settings); }), CORVIN_E_READ);
          if (!keeps) {
            EXPECT_EQ(status_of([&] { writer.finish(8); }), CORVIN_E_ARGUMENT);
          } else {
            EXPECT_EQ(status_of([&] { writer.finish(8); }), CORVIN_E_STATE);
            MemoryFile copy(target.bytes);
            const std::uint64_t count = copy.info().samples;
            EXPECT_GT(count, samples / 10);
            EXPECT_TRUE(read_all(copy) == samples_of(sound, 1, threads, count));
          }
        }
        file.calls_left = 3;
        MemoryStream faster;
        Writer writer(faster.callbacks(), writer_settings(CORVIN_DSF, 1, 5644800));
        settings.modulator = CORVIN_MODULATOR_STANDARD;
        try {
          convert_dsd_rate(file, writer, settings);
          ADD_FAILURE();
        } catch (const ConvertError& error) {
          EXPECT_EQ(error.status(), CORVIN_E_READ);
          EXPECT_EQ(error.report().finished, keeps ? 1u : 0u);
          EXPECT_GT(error.report().missing, 0u);
        }
        if (!keeps) continue;
        MemoryFile kept(faster.bytes);
        EXPECT_GT(kept.info().samples, samples / 10);
      }
    }
    // One that is cut short is whole as far as it goes.
    MemoryFile cut(Bytes(good.begin(), good.end() - 500000));
    ConvertSettings settings;
    EXPECT_EQ(converted(cut, settings).report.missing, samples - cut.info().samples);
    settings.sample_count = 100000;
    EXPECT_EQ(converted(cut, settings).report.missing, 0u);
  }
}

TEST(ConvertStretch, RefusesWhatIsNotInTheFile) {
  MemoryFile file(file_of(writer_settings(CORVIN_DSF, 2), Bytes(2000, kIdle), 7999));
  MemoryStream to;
  Writer writer(to.callbacks(), writer_settings(CORVIN_DSF, 2));
  const auto statuses = [&](const ConvertSettings& settings, int expected) {
    converted(file, settings, expected);
    EXPECT_EQ(status_of([&] { convert_copy(file, writer, settings); }), expected);
    EXPECT_EQ(status_of([&] { convert_dsd_rate(file, writer, settings); }), expected);
    const PcmSource nothing = {.read = [](void*, std::size_t) { return 0; }};
    EXPECT_EQ(status_of([&] { convert_to_dsd(nothing, writer, settings); }), CORVIN_E_ARGUMENT);
  };
  ConvertSettings settings;
  settings.begin_sample = 8000;
  statuses(settings, CORVIN_E_ARGUMENT);
  settings.begin_sample = 7000;
  settings.sample_count = 1000;
  statuses(settings, CORVIN_E_ARGUMENT);
  settings.sample_count = ~std::uint64_t{0};
  statuses(settings, CORVIN_E_ARGUMENT);
  settings = ConvertSettings();
  settings.channel_map_count = 2;
  statuses(settings, CORVIN_E_ARGUMENT);
  const std::uint32_t beyond[] = {0, 2};
  settings.channel_map = beyond;
  statuses(settings, CORVIN_E_ARGUMENT);
  const std::vector<std::uint32_t> many(65);
  settings.channel_map = many.data();
  settings.channel_map_count = many.size();
  statuses(settings, CORVIN_E_ARGUMENT);
  EXPECT_EQ(read_all(file).size(), 2000u);
}

}  // namespace
}  // namespace corvin::studio

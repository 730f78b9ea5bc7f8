// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Whole conversions to DSD: the encoder's own bytes in every container; DSD of another rate that
// sounds as before; ends as promised.

#include <gtest/gtest.h>

#include <cmath>
#include <complex>

#include "tests/support/pcm_memory.h"
#include "tests/support/sound_files.h"

namespace corvin::studio {
namespace {

TEST(ConvertToDsd, IsTheEncoderIntoEveryContainer) {
  Random random(30);
  for (const std::uint32_t channels : {1u, 2u, 6u}) {
    EncoderSettings encoder;
    encoder.channels = channels;
    encoder.pcm_rate = 48000;
    encoder.format = CORVIN_S16;
    encoder.gain_db = 6;
    encoder.pass_hz = channels == 2 ? 19000 : 0;
    encoder.stop_hz = channels == 6 ? 21000 : 0;
    encoder.phase = channels == 1 ? CORVIN_LINEAR_PHASE : CORVIN_MINIMUM_PHASE;
    Pcm pcm{random.bytes(2 * channels * 20001), 2 * channels};
    const Bytes expected = encode(encoder, pcm.data);
    const std::uint64_t samples = Encoder(encoder).samples(20001);
    for (const corvin_container container : kContainers) {
      for (const std::uint32_t threads : {0u, 2u}) {
        ConvertSettings settings;
        settings.gain_db = 6;
        settings.pass_hz = encoder.pass_hz;
        settings.stop_hz = encoder.stop_hz;
        settings.phase = encoder.phase;
        settings.threads = threads;
        MemoryStream stream;
        Writer writer(stream.callbacks(), writer_settings(container, channels));
        pcm.position = 0;
        pcm.most_at_once = threads == 0 ? 777 : 100000;
        const corvin_convert_report report =
            convert_to_dsd(pcm.source(48000, channels, CORVIN_S16), writer, settings);
        EXPECT_EQ(report.frames, 20001u);
        EXPECT_EQ(report.samples, samples);
        EXPECT_GT(report.limited, 0u);  // the noise's peaks
        MemoryFile file(stream.bytes);
        EXPECT_EQ(file.info().samples, container == CORVIN_DSF ? samples : (samples + 7) / 8 * 8);
        EXPECT_TRUE(read_all(file) == expected)
            << container << ", " << channels << " channels, " << threads;
      }
    }
  }
}

// A tone in DSD through another rate is the tone that decodes from the source.
TEST(ConvertToDsd, DsdOfAnotherRateSoundsAsBefore) {
  constexpr std::uint32_t kFrames = 22050;
  EncoderSettings encoder;
  encoder.channels = 1;
  encoder.format = CORVIN_F64;
  const Bytes source = encode(encoder, as_f64(sine(1000, 44100, 0.5, kFrames)));
  const std::uint64_t source_samples = 64 * kFrames;
  const std::vector<double> before = decode_mono(2822400, 44100, source);
  for (const std::uint32_t rate : {2822400u, 5644800u, 3072000u, 22579200u}) {
    MemoryFile file(file_of(writer_settings(CORVIN_DSF, 1), source, source_samples));
    MemoryStream target;
    Writer writer(target.callbacks(), writer_settings(CORVIN_DSF, 1, rate));
    ConvertSettings settings;
    settings.threads = 1;
    const corvin_convert_report report = convert_dsd_rate(file, writer, settings);
    const std::uint64_t samples = (source_samples * (rate / 2400) + 1175) / 1176;
    EXPECT_EQ(report.samples, samples);
    EXPECT_EQ(report.overloads, 0u);
    MemoryFile made(target.bytes);
    EXPECT_EQ(made.info().samples, samples);
    const std::vector<double> after = decode_mono(rate, 44100, read_all(made));
    // Away from the ends, where the source's own silence begins and stops: the noise of two
    // modulators up to 20.9 kHz, -110 dB, of which most lies above 20 kHz.
    double worst = 0;
    for (std::size_t i = 2000; i + 2000 < kFrames; ++i)
      worst = std::max(worst, std::fabs(after[i] - before[i]));
    EXPECT_LT(worst, 1e-4) << rate;
  }
}

// Amplitude of a tone in the middle of a signal at 352.8 kHz, through a Hann window.
double tone_in(const std::vector<double>& signal, double hz) {
  std::complex<double> sum = 0;
  double weights = 0;
  const std::size_t edge = signal.size() / 8;
  const auto count = static_cast<double>(signal.size() - 2 * edge);
  for (std::size_t i = edge; i < signal.size() - edge; ++i) {
    const double weight = 1 - std::cos(2 * kPi * (static_cast<double>(i - edge) + 0.5) / count);
    sum += weight * signal[i] * std::polar(1.0, -2 * kPi * hz * static_cast<double>(i) / 352800);
    weights += weight;
  }
  return 2 * std::abs(sum) / weights;
}

// Through another rate go the tones that lie below the noise of the source's modulator, and that
// noise does not. Tones that lie in the target's own noise come out of it, give or take 2.5 dB.
TEST(ConvertToDsd, AnotherRateKeepsTheSourcesBandAndNotItsNoise) {
  struct Case {
    std::uint32_t from, to;
    std::vector<double> kept_hz, gone_hz;
  };
  const std::vector<double> tones = {1000, 20000, 30000, 39000, 79000, 130000};
  constexpr double kAmplitude = 0.1;
  for (const Case& test : {Case{2822400, 5644800, {1000, 20000}, {39000}},
                           Case{5644800, 2822400, {1000, 20000, 30000, 39000}, {}},
                           Case{5644800, 3072000, {1000, 20000, 30000, 39000}, {}},
                           Case{5644800, 11289600, {1000, 20000, 30000, 39000}, {79000}},
                           Case{11289600, 5644800, {1000, 20000, 39000, 79000}, {}},
                           Case{11289600, 22579200, {1000, 39000, 79000}, {130000}},
                           Case{22579200, 11289600, {1000, 39000, 130000}, {}}}) {
    SCOPED_TRACE(std::to_string(test.from) + " to " + std::to_string(test.to));
    std::vector<double> in(35280);
    for (double hz : tones) {
      const std::vector<double> one = sine(hz, 352800, kAmplitude, in.size());
      for (std::size_t i = 0; i < in.size(); ++i) in[i] += one[i];
    }
    EncoderSettings encoder;
    encoder.channels = 1;
    encoder.format = CORVIN_F64;
    encoder.pcm_rate = 352800;
    encoder.dsd_rate = test.from;
    MemoryFile file(
        file_of(writer_settings(CORVIN_DSF, 1, test.from), encode(encoder, as_f64(in))));
    MemoryStream target;
    Writer writer(target.callbacks(), writer_settings(CORVIN_DSF, 1, test.to));
    ConvertSettings settings;
    settings.threads = 1;
    EXPECT_EQ(convert_dsd_rate(file, writer, settings).overloads, 0u);
    MemoryFile made(target.bytes);
    DecoderSettings decoder;
    decoder.channels = 1;
    decoder.format = CORVIN_F64;
    decoder.dsd_rate = test.to;
    decoder.pcm_rate = 352800;
    decoder.stop_hz = 176400;
    const std::vector<double> out = channel_of(decode(decoder, read_all(made)), 1, 0);
    for (double hz : test.kept_hz) {
      const double level_db = 20 * std::log10(tone_in(out, hz) / kAmplitude);
      const double noisy_hz = test.to < 5000000 ? 20000 : test.to < 10000000 ? 40000 : 80000;
      EXPECT_LT(std::fabs(level_db), hz > noisy_hz ? 2.5 : 0.001) << hz << ": " << level_db;
    }
    for (double hz : test.gone_hz) {
      EXPECT_LT(20 * std::log10(tone_in(out, hz) / kAmplitude), -60) << hz;
    }
  }
}

TEST(ConvertToDsd, EndsWhereverItIsAsked) {
  const Bytes silence(4 * 200000);
  for (const std::uint32_t threads : {0u, 2u}) {
    ConvertSettings settings;
    settings.threads = threads;
    const auto status = [&](Pcm pcm, MemoryStream stream, std::uint64_t& finished_bytes) {
      Writer writer(stream.callbacks(), writer_settings(CORVIN_DSDIFF, 2));
      const corvin_pcm_source source = pcm.source(44100, 2, CORVIN_S16);
      corvin_convert_report report = empty_report();
      const int result = corvin_convert_to_dsd(&source, writer.handle(), &settings, &report);
      finished_bytes = stream.bytes.size();
      // Nothing has been finished; a file that has lost bytes never is.
      if (result != CORVIN_OK) {
        EXPECT_EQ(corvin_writer_finish(writer.handle(), 1),
                  result == CORVIN_E_WRITE ? CORVIN_E_WRITE : CORVIN_E_ARGUMENT);
      }
      return result;
    };
    std::uint64_t bytes = 0;
    Pcm failing{silence, 4};
    failing.calls_left = 2;
    EXPECT_EQ(status(failing, MemoryStream(), bytes), CORVIN_E_READ);
    MemoryStream full;
    full.calls_left = 2;
    EXPECT_EQ(status(Pcm{silence, 4}, full, bytes), CORVIN_E_WRITE);
    settings.progress = [](void*, std::uint64_t done, std::uint64_t total) {
      return done > total / 2 ? 1 : 0;
    };
    EXPECT_EQ(status(Pcm{silence, 4}, MemoryStream(), bytes), CORVIN_E_CANCELLED);
    settings.progress = nullptr;
    EXPECT_EQ(status(Pcm{Bytes(), 4}, MemoryStream(), bytes), CORVIN_OK);
    EXPECT_GT(bytes, 0u);
  }
}

TEST(ConvertToDsd, RefusesWhatItCannotDo) {
  Pcm pcm{Bytes(400), 4};
  MemoryStream stream;
  Writer writer(stream.callbacks(), writer_settings(CORVIN_DSF, 2));
  const auto status = [&](std::uint32_t rate, std::uint32_t channels, std::uint32_t format) {
    const corvin_pcm_source source = pcm.source(rate, channels, format);
    return corvin_convert_to_dsd(&source, writer.handle(), nullptr, nullptr);
  };
  EXPECT_EQ(status(44101, 2, CORVIN_S16), CORVIN_E_UNSUPPORTED);
  EXPECT_EQ(status(44100, 1, CORVIN_S16), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status(44100, 2, 9), CORVIN_E_ARGUMENT);
  EXPECT_EQ(corvin_convert_to_dsd(nullptr, writer.handle(), nullptr, nullptr), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status(44100, 2, CORVIN_S16), CORVIN_OK);
  EXPECT_EQ(status(44100, 2, CORVIN_S16), CORVIN_E_STATE);

  MemoryFile file(file_of(writer_settings(CORVIN_DSF, 2, 3000000), Bytes(200)));
  MemoryStream target;
  Writer fresh(target.callbacks(), writer_settings(CORVIN_DSF, 2));
  EXPECT_EQ(corvin_convert_dsd_rate(file.handle(), fresh.handle(), nullptr, nullptr),
            CORVIN_E_UNSUPPORTED);
}

}  // namespace
}  // namespace corvin::studio

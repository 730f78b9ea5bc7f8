// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// How a stream ends: what its last frames decode to, and what a player hears behind them.

#include <gtest/gtest.h>

#include <cstdio>

#include "studio/encode/modulator_stream.h"
#include "tests/support/studio_streams.h"

namespace corvin::studio {
namespace {

struct Case {
  std::uint32_t pcm, dsd, grade;
};

// Errors in parts of full scale, decoded to 44.1 or 48 kHz.
struct Ending {
  double last = 0;    // largest of the last two milliseconds
  double behind = 0;  // largest of the ten behind them
  double energy = 0;  // of all
};

void measure(const std::vector<double>& is, const std::vector<double>& wanted, std::size_t end,
             std::size_t per_ms, Ending& ending) {
  ending = {};
  for (std::size_t i = 0; i < std::min(is.size(), end + 12 * per_ms); ++i) {
    const double error = std::fabs(is[i] - wanted[i]);
    ending.energy += error * error;
    if (i >= end) ending.behind = std::max(ending.behind, error);
    if (i < end && i + 2 * per_ms >= end) ending.last = std::max(ending.last, error);
  }
}

double db(double factor) { return 20 * std::log10(factor + 1e-12); }

// Ends `sound` as the encoder does, and as the modulator would if it were cut there.
struct Both {
  Ending rested, cut;
};

Both endings(const Case& row, std::vector<double> sound, bool low_latency = false) {
  EncoderSettings settings;
  settings.pcm_rate = row.pcm;
  settings.dsd_rate = row.dsd;
  settings.channels = 1;
  settings.format = CORVIN_F64;
  settings.modulator = row.grade;
  settings.low_latency = low_latency;
  Encoder encoder(settings);
  const std::uint64_t samples = encoder.samples(sound.size());
  Bytes rested = encode(encoder, settings, as_f64(sound));
  const std::uint32_t rate = row.dsd % 44100 == 0 ? 44100 : 48000;
  const std::size_t end = static_cast<std::size_t>(samples / (row.dsd / rate));
  sound.resize(sound.size() + row.pcm / 10);
  const Bytes whole = encode(settings, as_f64(sound));

  // What the modulator decided long before the end stands.
  const std::size_t bytes = rested.size();
  const std::size_t held = low_latency ? ModulatorStream::kShortHeld : ModulatorStream::kHeld;
  if (bytes > held) {
    const auto same = static_cast<std::ptrdiff_t>(bytes - held);
    EXPECT_TRUE(std::equal(rested.begin(), rested.begin() + same, whole.begin()));
  }
  Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(bytes));
  if (samples % 8 != 0) {
    const unsigned silent = 0xff >> samples % 8;
    cut.back() = static_cast<std::uint8_t>((cut.back() & ~silent) | (kIdle & silent));
  }
  // As long as the decoder's filter reaches, and more.
  for (Bytes* stream : {&rested, &cut}) stream->resize(bytes + row.dsd / 8 / 50, kIdle);
  const std::vector<double> wanted = decode_mono(row.dsd, rate, whole);
  Both both;
  measure(decode_mono(row.dsd, rate, rested), wanted, end, rate / 1000, both.rested);
  measure(decode_mono(row.dsd, rate, cut), wanted, end, rate / 1000, both.cut);
  return both;
}

// A tone at almost full scale, over an offset that leaves any charge, faded within `fade` frames.
std::vector<double> tone(const Case& row, std::size_t frames, std::size_t quiet, std::size_t fade,
                         double offset) {
  std::vector<double> sound = sine(997, row.pcm, 0.9, frames);
  for (std::size_t i = 0; i < frames; ++i) {
    const double left = static_cast<double>(i + quiet < frames ? frames - quiet - i : 0);
    sound[i] =
        (sound[i] + offset) * (fade == 0 ? 1 : std::min(1.0, left / static_cast<double>(fade)));
  }
  return sound;
}

TEST(Rest, QuietEndsStayQuiet) {
  constexpr Case kCases[] = {
      {44100, 2822400, CORVIN_MODULATOR_STANDARD},   {44100, 2822400, CORVIN_MODULATOR_HIGH},
      {44100, 2822400, CORVIN_MODULATOR_BEST},       {48000, 2822400, CORVIN_MODULATOR_STANDARD},
      {96000, 6144000, CORVIN_MODULATOR_HIGH},       {88200, 11289600, CORVIN_MODULATOR_STANDARD},
      {352800, 22579200, CORVIN_MODULATOR_STANDARD},
  };
  for (const Case& row : kCases) {
    // Not whole bytes, where the rates are of two families.
    const std::size_t frames = row.pcm / 8 + 7;
    const std::vector<double> sounds[] = {std::vector<double>(frames),
                                          tone(row, frames, frames / 3, row.pcm / 50, 0.0037),
                                          tone(row, frames, frames / 2, row.pcm / 100, -0.0112)};
    for (const bool low : {false, true}) {
      for (const auto& sound : sounds) {
        const auto [rested, cut] = endings(row, sound, low);
        char text[160];
        std::snprintf(text, sizeof text, "%u to %u, %u%s, sound %td: %.1f, %.1f, cut %.1f, %.1f",
                      row.pcm, row.dsd, row.grade, low ? " low" : "", &sound - sounds,
                      db(rested.last), db(rested.behind), db(cut.last), db(cut.behind));
        EXPECT_LE(db(rested.last), low ? -75 : -90) << text;
        EXPECT_LE(db(rested.behind), low ? -75 : -90) << text;
        // At DSD512 a cut may be as good as that.
        EXPECT_LE(rested.energy, std::max(low ? 1e-7 : 1e-10, cut.energy / 10)) << text;
      }
    }
  }
}

// Sounds that end as they please, and streams that are shorter than what is searched. What is broken
// off would have rung on: a cut's own error may make up for a little of that, by chance.
TEST(Rest, NoEndIsWorseThanTheCut) {
  double rested_sum = 0, cut_sum = 0;
  for (const Case& row :
       {Case{44100, 2822400, CORVIN_MODULATOR_STANDARD},
        Case{48000, 2822400, CORVIN_MODULATOR_BEST}, Case{44100, 5644800, CORVIN_MODULATOR_HIGH}}) {
    for (std::size_t frames : {1u, 2u, 5u, 16u, 17u, 40u, 200u, 1500u, 4001u, 4020u}) {
      for (double offset : {0.0, 0.09}) {
        for (const bool low : {false, true}) {
          const auto [rested, cut] = endings(row, tone(row, frames, 0, 0, offset), low);
          EXPECT_LE(rested.energy, (low ? 1.5 : 1.25) * cut.energy)
              << row.pcm << ' ' << row.dsd << ' ' << frames << ' ' << offset << ' ' << low;
          rested_sum += rested.energy;
          cut_sum += cut.energy;
        }
      }
    }
  }
  EXPECT_LE(rested_sum, 0.6 * cut_sum);
}

}  // namespace
}  // namespace corvin::studio

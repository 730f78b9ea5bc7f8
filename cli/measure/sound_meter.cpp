// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/measure/sound_meter.h"

#include <algorithm>
#include <limits>

#include "cli/words/failure.h"
#include "cli/words/job_progress.h"
#include "cli/words/loudness.h"

namespace corvin::cli {
namespace {

constexpr size_t kFramesAtOnce = 1 << 12;

// Bits are +-1, and +-0.5 of them is full scale: their power in relation to its sine is the square of 2
// by 0.5, wherever the modulator has put it.
constexpr double kBitsPower = 8;

std::vector<BandPower> bands_of(const Spectrum& spectrum, const SoundFacts& facts,
                                std::optional<double> total_power) {
  if (spectrum.bins.empty()) return {};
  constexpr double kAll = std::numeric_limits<double>::infinity();
  const double half_hz = facts.rate_hz / 2.0;
  std::vector<BandPower> bands;
  const struct {
    double from_hz, to_hz;
  } kBands[] = {{20, 20e3}, {20e3, 24e3}, {24e3, 40e3}, {40e3, 100e3}, {40e3, kAll}};
  for (const auto& band : kBands) {
    if (band.from_hz >= half_hz) break;
    const bool is_last = band.to_hz >= half_hz;
    if (is_last && total_power)
      bands.push_back(
          {band.from_hz, half_hz, std::max(0.0, *total_power - spectrum.power(0, band.from_hz))});
    else
      bands.push_back({band.from_hz, is_last ? half_hz : band.to_hz,
                       spectrum.power(band.from_hz, is_last ? kAll : band.to_hz)});
    if (is_last) break;
  }
  return bands;
}

}  // namespace

SoundMeter::SoundMeter(const SoundFacts& facts)
    : facts_(facts),
      levels_(facts.level_rate_hz, facts.channels),
      loudness_(facts.level_rate_hz, facts.channels, facts.speakers) {
  const auto window = std::make_shared<SpectrumWindow>(facts.spectrum_rate_hz);
  for (uint32_t channel = 0; channel < facts.channels; ++channel) spectra_.emplace_back(window);
}

void SoundMeter::add_levels(const double* frames, size_t count) {
  levels_.add(frames, count);
  loudness_.add(frames, count);
}

void SoundMeter::add_spectra(const double* frames, size_t count) {
  for (uint32_t channel = 0; channel < facts_.channels; ++channel)
    spectra_[channel].add(frames + channel, count, facts_.channels);
}

Measurement SoundMeter::finish(std::span<const double> total_power) {
  levels_.finish();
  Measurement measured;
  measured.facts = facts_;
  measured.level_frames = levels_.frames();
  measured.loudness = loudness_.figures();
  measured.blocks = levels_.blocks();
  measured.block_seconds =
      static_cast<double>(levels_.block_frames()) / static_cast<double>(facts_.level_rate_hz);
  for (uint32_t channel = 0; channel < facts_.channels; ++channel) {
    SpectrumMeter& meter = spectra_[channel];
    meter.finish();
    const Spectrum& spectrum = meter.average();
    measured.bin_hz = spectrum.bin_hz;
    ChannelMeasures one;
    one.level = levels_.channel(channel);
    one.true_peak = std::max(loudness_.true_peak(channel), one.level.peak);
    one.bands = bands_of(spectrum, facts_,
                         total_power.empty() ? std::nullopt : std::optional(total_power[channel]));
    one.noise = rising_noise(spectrum);
    one.lines_in = meter.quiet_windows() > 0 ? LinesIn::kQuiet
                   : meter.is_standing()     ? LinesIn::kStanding
                                             : LinesIn::kNothing;
    if (one.lines_in != LinesIn::kNothing)
      one.lines = lines_of(one.lines_in == LinesIn::kQuiet ? meter.quiet() : spectrum);
    one.curve = curve_of(spectrum.bins, spectrum.bin_hz);
    measured.channels.push_back(std::move(one));
  }
  return measured;
}

Measurement measure_file(const std::string& path, const std::string& name) {
  const SoundFacts facts = facts_of(path);
  const uint32_t ratio = facts.spectrum_rate_hz / facts.level_rate_hz;
  const uint64_t declared = facts.samples.value_or(0);
  const uint64_t total = facts.is_dsd ? declared / (facts.rate_hz / facts.level_rate_hz) : declared;
  const auto levels = open_frames(path, facts, FramesFor::kLevels);
  const auto spectra = facts.is_dsd ? open_frames(path, facts, FramesFor::kSpectra) : nullptr;
  SoundMeter meter(facts);
  JobProgress progress(name, facts.level_rate_hz);
  std::vector<double> frames(kFramesAtOnce * ratio * facts.channels);
  uint64_t done = 0;
  while (const size_t got = levels->read(frames.data(), kFramesAtOnce)) {
    meter.add_levels(frames.data(), got);
    if (!spectra) meter.add_spectra(frames.data(), got);
    if (spectra)
      meter.add_spectra(frames.data(), spectra->read(frames.data(), kFramesAtOnce * ratio));
    done += got;
    progress.show(done, total);
  }
  if (spectra)
    while (const size_t got = spectra->read(frames.data(), kFramesAtOnce))
      meter.add_spectra(frames.data(), got);
  levels->note_damage();
  if (done == 0 && declared > 0) throw Failure(kBadInput, path, "has no sound that can be read");
  note_detail(path, progress.result());
  const std::vector<double> bits(facts.is_dsd ? facts.channels : 0, kBitsPower);
  return meter.finish(bits);
}

}  // namespace corvin::cli

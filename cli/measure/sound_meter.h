// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Everything that is measured of a sound.

#ifndef CORVIN_CLI_MEASURE_SOUND_METER_H_
#define CORVIN_CLI_MEASURE_SOUND_METER_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "cli/measure/frame_source.h"
#include "cli/measure/levels.h"
#include "cli/measure/loudness_meter.h"
#include "cli/measure/spectrum.h"
#include "cli/measure/spectrum_findings.h"
#include "cli/plot/curve.h"

namespace corvin::cli {

struct BandPower {
  double from_hz = 0, to_hz = 0;
  double power = 0;
};

/** Where lines were looked for: they are no idle tones in the midst of music. */
enum class LinesIn { kNothing, kQuiet, kStanding };

struct ChannelMeasures {
  ChannelLevel level;
  double true_peak = 0;
  std::vector<BandPower> bands;
  std::optional<RisingNoise> noise;
  LinesIn lines_in = LinesIn::kNothing;
  std::vector<Line> lines;
  std::vector<CurvePoint> curve;
};

struct Measurement {
  SoundFacts facts;
  uint64_t level_frames = 0;
  LoudnessFigures loudness;
  std::vector<ChannelMeasures> channels;
  std::vector<LevelBlock> blocks;
  double block_seconds = 0;
  double bin_hz = 0;  // of the spectra

  double seconds() const {
    return static_cast<double>(level_frames) / static_cast<double>(facts.level_rate_hz);
  }
};

class SoundMeter {
 public:
  explicit SoundMeter(const SoundFacts& facts);

  /** Take interleaved frames of the rates that the facts have for levels and for spectra. */
  void add_levels(const double* frames, size_t count);
  void add_spectra(const double* frames, size_t count);

  /** Ends the measurement.
   *  @param total_power  of each channel up to half the file's rate, of which the spectrum has less;
   *                      empty: it has all */
  Measurement finish(std::span<const double> total_power);

 private:
  SoundFacts facts_;
  SampleMeter levels_;
  LoudnessMeter loudness_;
  std::vector<SpectrumMeter> spectra_;
};

/** Measures a file. Damage of which the rest can be measured is noted; throws Failure.
 *  @param name  of the file in progress */
Measurement measure_file(const std::string& path, const std::string& name);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_MEASURE_SOUND_METER_H_

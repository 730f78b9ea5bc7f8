// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// One picture of a sound: its spectrum, and its level over time.

#ifndef CORVIN_CLI_PLOT_SOUND_PICTURE_H_
#define CORVIN_CLI_PLOT_SOUND_PICTURE_H_

#include <optional>
#include <string>
#include <vector>

#include "cli/plot/curve.h"

namespace corvin::cli {

struct NamedCurve {
  std::string name;
  std::vector<CurvePoint> points;
};

/** A stretch of the sound; amplitude and power, 1.0 for a sine of full scale. */
struct LevelStep {
  double peak = 0;
  double power = 0;
};

struct SoundPicture {
  std::string title, subtitle;
  std::vector<NamedCurve> spectra;  // of the channels
  double highest_hz = 22050;        // of the spectra
  double bin_hz = 1;
  std::optional<double> noise_hz = {};  // where rising noise begins
  std::vector<LevelStep> levels;
  double step_seconds = 1;
  double seconds = 0;
};

/** The picture as an SVG document, 900 units wide. */
std::string svg_of(const SoundPicture& picture);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_PLOT_SOUND_PICTURE_H_

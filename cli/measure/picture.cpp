// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/measure/picture.h"

#include <algorithm>

#include "cli/measure/report.h"

namespace corvin::cli {

SoundPicture picture_of(const Measurement& measured, const std::string& title) {
  SoundPicture picture;
  picture.title = title;
  picture.subtitle = sound_text(measured);
  if (measured.loudness.integrated_lufs)
    picture.subtitle += ", " + fixed(measured.loudness.integrated_lufs, 1) + " LUFS";
  picture.highest_hz = measured.facts.spectrum_rate_hz / 2.0;
  picture.bin_hz = measured.bin_hz;
  const std::vector<std::string> names = channel_names(measured.facts);
  for (size_t i = 0; i < measured.channels.size(); ++i) {
    const ChannelMeasures& channel = measured.channels[i];
    picture.spectra.push_back({.name = names[i], .points = channel.curve});
    if (channel.noise)
      picture.noise_hz = std::min(picture.noise_hz.value_or(1e9), channel.noise->begins_hz);
  }
  for (const LevelBlock& block : measured.blocks)
    picture.levels.push_back({.peak = block.peak, .power = block.power});
  picture.step_seconds = measured.block_seconds;
  picture.seconds = measured.seconds();
  return picture;
}

}  // namespace corvin::cli

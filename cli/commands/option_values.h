// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The texts of options as values: rates, widths of samples, levels, bands, positions and channels.
// Letters of either case are one; no value stands for a text that is none of these.

#ifndef CORVIN_CLI_COMMANDS_OPTION_VALUES_H_
#define CORVIN_CLI_COMMANDS_OPTION_VALUES_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "corvin.h"

namespace corvin::cli {

/** A rate that was asked for: in Hz or as a multiple of 44100 or 48000 Hz. */
struct AskedRate {
  std::string text;  // as given, for messages
  std::optional<uint32_t> hz;
  std::optional<uint32_t> dsd_multiple;  // 64, 128, 256 or 512
};

/** "88200", "44.1k", "2.8224M", "dxd" (352800), "dsd64", "128" for DSD128. */
std::optional<AskedRate> rate_in(const std::string& text);

/** "16", "20", "24", "32", "f32", "float", "f64". */
std::optional<corvin_sample_format> sample_format_in(const std::string& text);

/** A change of level; without `db` what brings the highest peak to full scale. */
struct Gain {
  std::optional<double> db;
};

/** "auto", or dB from -120 to 60: "-6", "+6", "1.5dB". */
std::optional<Gain> gain_in(const std::string& text);

/** The band that filters keep. */
struct Band {
  double pass_hz = 0;    // flat up to here
  double stop_hz = 0;    // closed from here on; 0: 1.6 times pass_hz
  bool is_full = false;  // all that the rates allow instead
};

/** "off", "20000", "20k", "20k:32k". */
std::optional<Band> band_in(const std::string& text);

/** A place in the sound: a sample of the input's rate, or a time. */
struct Position {
  std::optional<uint64_t> sample;
  double seconds = 0;

  uint64_t at_rate(uint32_t rate_hz) const;
};

/** "441000" (samples), "90s", "1:30", "1:02:03.5". */
std::optional<Position> position_in(const std::string& text);

/** Channels of the input, counted from 0, as the output is to have them: "2,1", "1", "1,1". */
std::optional<std::vector<uint32_t>> channel_map_in(const std::string& text);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_COMMANDS_OPTION_VALUES_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Signals at an eighth of the DSD rate, and their bytes.

#ifndef CORVIN_TESTS_STUDIO_MODULATOR_STREAMS_H_
#define CORVIN_TESTS_STUDIO_MODULATOR_STREAMS_H_

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <vector>

#include "studio/modulator/modulator.h"

namespace corvin::testing {

using Samples = std::vector<double>;
using Bytes = std::vector<std::uint8_t>;

inline double dsd_rate(int oversampling) { return 44100.0 * oversampling; }

/// A sine that fades in over a thousand samples.
inline Samples sine(double frequency_hz, double amplitude, std::size_t count,
                    int oversampling = 64) {
  Samples samples(count);
  for (std::size_t i = 0; i < count; ++i) {
    const double n = static_cast<double>(i);
    samples[i] = amplitude * std::min(1.0, n / 1000) *
                 std::sin(2 * std::numbers::pi * frequency_hz * n * 8 / dsd_rate(oversampling));
  }
  return samples;
}

struct Modulated {
  std::vector<Bytes> bytes;  ///< per channel
  std::uint64_t overloads[2] = {};
};

/// A whole stream through one modulator, `chunk` samples a call.
inline Modulated modulate(const studio::ModulatorConfig& config, const std::vector<Samples>& in,
                          std::size_t chunk = 4096) {
  studio::Modulator modulator(config);
  Modulated made;
  const std::size_t total = in[0].size();
  for (int c = 0; c < config.channels; ++c) {
    made.bytes.emplace_back(total + chunk + 2 * studio::Modulator::kLookAhead);
  }
  std::size_t written = 0;
  for (std::size_t at = 0; at < total; at += chunk) {
    const double* from[2];
    std::uint8_t* to[2];
    for (int c = 0; c < config.channels; ++c) {
      from[c] = in[static_cast<std::size_t>(c)].data() + at;
      to[c] = made.bytes[static_cast<std::size_t>(c)].data() + written;
    }
    written += modulator.modulate(from, std::min(chunk, total - at), to);
  }
  std::uint8_t* to[2];
  for (int c = 0; c < config.channels; ++c) {
    to[c] = made.bytes[static_cast<std::size_t>(c)].data() + written;
  }
  written += modulator.finish(to);
  for (int c = 0; c < config.channels; ++c) {
    made.bytes[static_cast<std::size_t>(c)].resize(written);
    made.overloads[c] = modulator.overload_events(c);
  }
  return made;
}

/// One channel alone.
inline Modulated modulate(studio::ModulatorConfig config, const Samples& in) {
  config.channels = 1;
  return modulate(config, std::vector<Samples>{in});
}

}  // namespace corvin::testing

#endif  // CORVIN_TESTS_STUDIO_MODULATOR_STREAMS_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Signals at an eighth of the DSD rate, and their bytes.

#ifndef CORVIN_TESTS_SUPPORT_MODULATOR_STREAMS_H_
#define CORVIN_TESTS_SUPPORT_MODULATOR_STREAMS_H_

#include "studio/modulator/modulator.h"
#include "tests/support/studio_streams.h"

namespace corvin::studio {

using Samples = std::vector<double>;

constexpr ModulatorGrade kGrades[] = {ModulatorGrade::kStandard, ModulatorGrade::kHigh,
                                      ModulatorGrade::kBest};

inline double dsd_rate(int oversampling) { return 44100.0 * oversampling; }

/// A sine that fades in over a thousand samples.
inline Samples faded_sine(double frequency_hz, double amplitude, std::size_t count,
                          int oversampling = 64) {
  Samples samples = sine(frequency_hz, dsd_rate(oversampling) / 8, amplitude, count);
  for (std::size_t i = 0; i < std::min<std::size_t>(count, 1000); ++i) {
    samples[i] *= static_cast<double>(i) / 1000;
  }
  return samples;
}

struct Modulated {
  std::vector<Bytes> bytes;  ///< per channel
  std::uint64_t overloads[2] = {};
};

/// A whole stream through one modulator, which it leaves as new, `chunk` samples a call.
inline Modulated modulate(Modulator& modulator, const std::vector<Samples>& in,
                          std::size_t chunk = 4096) {
  const std::size_t total = in[0].size();
  Modulated made;
  made.bytes.resize(in.size(), Bytes(total + chunk + 2 * Modulator::kLookAhead));
  std::size_t written = 0;
  const double* from[2];
  std::uint8_t* to[2];
  const auto aim = [&](std::size_t at) {
    for (std::size_t c = 0; c < in.size(); ++c) {
      from[c] = in[c].data() + at;
      to[c] = made.bytes[c].data() + written;
    }
  };
  for (std::size_t at = 0; at < total; at += chunk) {
    aim(at);
    written += modulator.modulate(from, std::min(chunk, total - at), to);
  }
  aim(total);
  const Samples silence(Modulator::kLookAhead);
  for (std::size_t c = 0; c < in.size(); ++c) from[c] = silence.data();
  written += modulator.modulate(from, silence.size(), to);
  for (std::size_t c = 0; c < in.size(); ++c) {
    made.bytes[c].resize(std::min(written, total));
    made.overloads[c] = modulator.overload_events(static_cast<int>(c));
  }
  modulator.reset();
  return made;
}

inline Modulated modulate(ModulatorConfig config, const std::vector<Samples>& in,
                          std::size_t chunk = 4096) {
  config.channels = static_cast<int>(in.size());
  Modulator modulator(config);
  return modulate(modulator, in, chunk);
}

/// One channel alone.
inline Modulated modulate(const ModulatorConfig& config, const Samples& in) {
  return modulate(config, std::vector<Samples>{in});
}

}  // namespace corvin::studio

#endif  // CORVIN_TESTS_SUPPORT_MODULATOR_STREAMS_H_

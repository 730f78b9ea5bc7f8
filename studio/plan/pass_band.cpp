// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//

#include "studio/plan/pass_band.h"

namespace corvin::studio {
namespace {

constexpr double kFullBandwidth = 0.95;
constexpr double kNarrowestTransition = 0.03;

// By DSD rate. The noise of a modulator rises by some 100 dB within an octave from the end of the
// band that it is made for: at the upper edges the library's own are at -90 dB in
// docs/quality/encode_spectra.csv, and closing there leaves peaks of -75 dBFS of the loudest. A
// tenth above the lower edge 0.02 dB are missing. One transition for all PCM rates: 3 % of 384 kHz
// is 11.5 kHz.
constexpr PassBand kSoundBands[] = {
    {20000, 32000}, {40000, 60000}, {80000, 120000}, {160000, 240000}};
constexpr unsigned kLeastDoublings = 6;

}  // namespace

PassBand full_band(double half_hz) { return {kFullBandwidth * half_hz, half_hz}; }

PassBand sound_band(const RateFamily& dsd, double half_hz) {
  const PassBand& band = kSoundBands[dsd.doublings - kLeastDoublings];
  return band.stop_hz < half_hz ? band : full_band(half_hz);
}

PassBand decoder_band(const RateFamily& dsd, double half_hz) {
  constexpr unsigned kDsd128 = 7;
  return dsd.doublings <= kDsd128 ? sound_band(dsd, half_hz) : full_band(half_hz);
}

std::optional<PassBand> choose_band(const PassBand& wanted, double half_hz, const PassBand& usual) {
  PassBand band = wanted;
  if (band.pass_hz == 0 && band.stop_hz == 0) band = usual;
  if (band.stop_hz == 0) band.stop_hz = half_hz;
  if (band.pass_hz == 0) band.pass_hz = band.stop_hz - (1 - kFullBandwidth) * half_hz;
  // Written so that a NaN fails.
  if (!(band.pass_hz > 0 && band.stop_hz <= half_hz &&
        band.stop_hz - band.pass_hz >= kNarrowestTransition * half_hz)) {
    return std::nullopt;
  }
  return band;
}

}  // namespace corvin::studio

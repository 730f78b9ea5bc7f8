// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The first step: the caller's samples to +-1.0, with gain.

#ifndef CORVIN_STUDIO_PCM_SAMPLE_INPUT_H_
#define CORVIN_STUDIO_PCM_SAMPLE_INPUT_H_

#include <cstddef>
#include <cstdint>

namespace corvin::studio {

/// Louder samples count as this one. A transform spreads its rounding over all of a span, so
/// one absurd value must not drown what lies beside it; the modulator follows up to +3 dB.
inline constexpr double kLoudestSample = 16.0;

/// Reads every `stride`th byte on a sample of a corvin_sample_format, little-endian. What is no
/// number counts as 0.
/// @param out  count samples within +-kLoudestSample
void read_samples(const std::uint8_t* in, std::size_t stride, std::size_t count,
                  std::uint32_t format, double gain, double* out);

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_PCM_SAMPLE_INPUT_H_

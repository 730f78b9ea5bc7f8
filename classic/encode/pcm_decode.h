// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Big-endian integer PCM to floats.

#ifndef CORVIN_CLASSIC_ENCODE_PCM_DECODE_H_
#define CORVIN_CLASSIC_ENCODE_PCM_DECODE_H_

#include <cstddef>

/// Decodes `frames` samples of one channel.
/// @param in      the channel's first sample; the next one is `stride` bytes further
/// @param bits    8, 16, 24 or 32
/// @param direct  for samples that go to the modulator as they are: full scale is 1.0, but 0.5 for
///                8 bits, which has always been divided by 255. Otherwise for the filter: the top
///                24 bits, full scale 0.5
void DecodePcm(const char* in, std::size_t frames, std::size_t stride, int bits, bool direct,
               float* out);

#endif  // CORVIN_CLASSIC_ENCODE_PCM_DECODE_H_

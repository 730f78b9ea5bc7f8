// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Integer PCM to floats.

#include "classic/encode/pcm_decode.h"

#include <cstdint>

namespace {

/// The sample in the top bits of a word.
std::int32_t Word(const char* in, int bytes) {
  std::uint32_t word = 0;
  for (int i = 0; i < bytes; ++i)
    word |= static_cast<std::uint32_t>(static_cast<unsigned char>(in[i])) << (24 - 8 * i);
  return static_cast<std::int32_t>(word);
}

float Direct(std::int32_t word, int bits) {
  switch (bits) {
    case 8:
      return static_cast<float>((word >> 24) / 255.0);
    case 16:
      return static_cast<float>((word >> 16) / 32767.0);
    case 24:
      return static_cast<float>((word >> 8) / 8388607.0);
    default:
      return static_cast<float>(word / 2147483648.0);
  }
}

}  // namespace

void DecodePcm(const char* in, std::size_t frames, std::size_t stride, int bits, bool direct,
               float* out) {
  // A step of the top 24 bits as the system has always rounded it, just above 2^-24.
  constexpr float kStep = 5.960465e-8f;
  for (std::size_t i = 0; i < frames; ++i) {
    const std::int32_t word = Word(in + i * stride, bits / 8);
    out[i] = direct ? Direct(word, bits) : static_cast<float>(word >> 8) * kStep;
  }
}

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/classic/integer_pcm.h"

#include <sndfile.h>

#include <algorithm>
#include <cmath>

namespace corvin::cli {
namespace {

// Bits of a file's integers; 0 when its samples are no integers.
int integer_bits(int sample_format) {
  switch (sample_format) {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8:
    case SF_FORMAT_DPCM_8:
      return 8;
    case SF_FORMAT_PCM_16:
    case SF_FORMAT_ULAW:
    case SF_FORMAT_ALAW:
    case SF_FORMAT_DPCM_16:
    case SF_FORMAT_DWVW_12:
    case SF_FORMAT_DWVW_16:
    case SF_FORMAT_ALAC_16:
      return 16;
    case SF_FORMAT_PCM_24:
    case SF_FORMAT_DWVW_24:
    case SF_FORMAT_ALAC_20:
    case SF_FORMAT_ALAC_24:
      return 24;
    case SF_FORMAT_PCM_32:
    case SF_FORMAT_ALAC_32:
      return 32;
    default:
      return 0;
  }
}

}  // namespace

IntegerPcm::IntegerPcm(PcmInput& input)
    : input_(input), bits_(integer_bits(input.sample_format())), is_integer_(bits_ != 0) {
  if (!is_integer_) bits_ = 24;
}

size_t IntegerPcm::read(std::span<uint8_t> pcm) {
  const size_t samples = pcm.size() / bytes_per_frame() * input_.channels();
  uint8_t* out = pcm.data();
  const auto put = [&](int32_t aligned) {  // the sample in the top bits
    for (int i = 0; i < bits_ / 8; ++i)
      *out++ = static_cast<uint8_t>(static_cast<uint32_t>(aligned) >> (24 - 8 * i));
  };
  if (is_integer_) {
    integers_.resize(samples);
    const size_t got = input_.read(std::span(integers_)) * input_.channels();
    for (size_t i = 0; i < got; ++i) put(integers_[i]);
  } else {
    // libsndfile's own way from floating point to integers scales by the file's peak.
    reals_.resize(samples);
    const size_t got = input_.read(std::span(reals_)) * input_.channels();
    for (size_t i = 0; i < got; ++i) put(quantised(reals_[i]));
  }
  return static_cast<size_t>(out - pcm.data());
}

int32_t IntegerPcm::quantised(double sample) {
  const double full_scale = std::ldexp(1.0, bits_ - 1);
  if (std::isnan(sample)) sample = 0;
  if (std::abs(sample) > 1) ++clipped_;
  const double steps = std::clamp(std::round(sample * full_scale), -full_scale, full_scale - 1);
  return static_cast<int32_t>(std::ldexp(steps, 32 - bits_));
}

uint64_t IntegerPcm::count_frames() {
  std::vector<uint8_t> buffer(std::max<size_t>(1 << 16, bytes_per_frame()));
  uint64_t frames = 0;
  while (const size_t bytes = read(buffer)) frames += bytes / bytes_per_frame();
  return frames;
}

}  // namespace corvin::cli

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/packed_input.h"

#include <sndfile.h>

#include <algorithm>
#include <iterator>
#include <span>

#include "cli/files/packed_samples.h"
#include "cli/words/failure.h"

namespace corvin::cli {
namespace {

struct Known {
  int sample_format;  // libsndfile's
  corvin_sample_format format;
  uint32_t significant_bits;
};

constexpr Known kKnown[] = {
    {SF_FORMAT_PCM_S8, CORVIN_S16, 8},   {SF_FORMAT_PCM_U8, CORVIN_S16, 8},
    {SF_FORMAT_PCM_16, CORVIN_S16, 0},   {SF_FORMAT_ALAC_16, CORVIN_S16, 0},
    {SF_FORMAT_PCM_24, CORVIN_S24, 0},   {SF_FORMAT_ALAC_24, CORVIN_S24, 0},
    {SF_FORMAT_ALAC_20, CORVIN_S24, 20}, {SF_FORMAT_PCM_32, CORVIN_S32, 0},
    {SF_FORMAT_ALAC_32, CORVIN_S32, 0},  {SF_FORMAT_FLOAT, CORVIN_F32, 0},
    {SF_FORMAT_DOUBLE, CORVIN_F64, 0},
};

}  // namespace

PackedInput::PackedInput(const std::string& path) : pcm_(path) {
  const auto* known = std::find_if(std::begin(kKnown), std::end(kKnown), [&](const Known& one) {
    return one.sample_format == pcm_.sample_format();
  });
  if (known == std::end(kKnown))
    throw Failure(kBadInput, path,
                  "has no samples that could be copied as they are: its kind compresses with loss");
  format_ = known->format;
  significant_bits_ = known->significant_bits;
  if (pcm_.odd_bits() != 0) significant_bits_ = pcm_.odd_bits();
}

std::string PackedInput::format_name() const {
  const auto width = static_cast<uint32_t>(bits_of(format_));
  const std::string bits = std::to_string(significant_bits_ != 0 ? significant_bits_ : width);
  return is_float(format_) ? bits + "-bit float" : bits + " bits";
}

size_t PackedInput::read(size_t frames, std::vector<uint8_t>& bytes) {
  bytes.clear();
  const auto read_as = [&](auto& samples) {
    samples.resize(frames * pcm_.channels());
    const size_t got = pcm_.read(std::span(samples));
    pack(std::span<const std::decay_t<decltype(samples[0])>>(samples).first(got * pcm_.channels()),
         format_, bytes);
    return got;
  };
  return is_float(format_) ? read_as(floats_) : read_as(integers_);
}

}  // namespace corvin::cli

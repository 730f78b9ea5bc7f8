// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The part of a file that a conversion is asked for.

#ifndef CORVIN_STUDIO_CONVERT_STRETCH_H_
#define CORVIN_STUDIO_CONVERT_STRETCH_H_

#include <algorithm>
#include <cstdint>
#include <optional>

#include "corvin.h"
#include "formats/sound_file.h"

namespace corvin::studio {

/// From one of a file's samples up to, without it, another one.
struct Stretch {
  std::uint64_t begin = 0;
  std::uint64_t end = 0;

  std::uint64_t samples() const { return end - begin; }
  /// Of these, what lies before a sample of the file.
  std::uint64_t samples_before(std::uint64_t sample) const {
    return std::clamp(sample, begin, end) - begin;
  }
};

/// Nothing when it does not lie within the file.
inline std::optional<Stretch> stretch_of(const corvin_convert_settings& settings,
                                         const formats::SoundFile& file) {
  const std::uint64_t begin = settings.begin_sample;
  if (begin > file.samples || settings.sample_count > file.samples - begin) return std::nullopt;
  const std::uint64_t count =
      settings.sample_count != 0 ? settings.sample_count : file.samples - begin;
  return Stretch{begin, begin + count};
}

/// What a stretch of which so many samples could be read lacks: the others, and what the file is
/// short of when the stretch goes up to its end.
inline std::uint64_t missing_samples(const Stretch& stretch, std::uint64_t read,
                                     const formats::SoundFile& file) {
  const bool is_cut = stretch.end >= file.samples && file.stated_samples > stretch.end;
  return (is_cut ? file.stated_samples : stretch.end) - stretch.begin - read;
}

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_CONVERT_STRETCH_H_

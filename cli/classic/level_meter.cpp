// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/classic/level_meter.h"

#include <algorithm>
#include <cmath>

#include "cli/words/measures.h"

namespace corvin::cli {

void LevelMeter::add(std::span<const uint8_t> pcm) {
  for (size_t i = 0; i + bytes_per_sample_ <= pcm.size(); i += bytes_per_sample_) {
    // Every width is read into the top of 32 bits, so one scale fits all.
    uint32_t aligned = 0;
    for (int byte = 0; byte < bytes_per_sample_; ++byte) {
      const int position = big_endian_ ? bytes_per_sample_ - 1 - byte : byte;
      aligned = aligned >> 8 | static_cast<uint32_t>(pcm[i + position]) << 24;
    }
    const double value = static_cast<int32_t>(aligned) / 2147483648.0;
    peak_ = std::max(peak_, std::abs(value));
    sum_of_squares_ += value * value;
    ++samples_;
  }
}

std::string LevelMeter::text() const {
  if (peak_ == 0) return level_text(0);
  const double mean_square = sum_of_squares_ / static_cast<double>(samples_);
  return level_text(peak_) + ", RMS " + dbfs_text(10 * std::log10(mean_square));
}

}  // namespace corvin::cli

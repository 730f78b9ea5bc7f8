// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/convert/bit_joiner.h"

#include <cstddef>

namespace corvin::cli {

void BitJoiner::add(std::span<const uint8_t> bytes, uint64_t samples, std::vector<uint8_t>& out) {
  const size_t channels = open_.size();
  samples_ += samples;
  if (open_bits_ == 0) {
    const auto full = bytes.first(samples / 8 * channels);
    out.insert(out.end(), full.begin(), full.end());
    bytes = bytes.subspan(full.size());
    samples %= 8;
  }
  while (samples > 0) {
    const auto bits = static_cast<unsigned>(samples < 8 ? samples : 8);
    const bool is_full = open_bits_ + bits >= 8;
    for (size_t channel = 0; channel < channels; ++channel) {
      // What stands behind the last sample does not count.
      const auto byte = static_cast<uint8_t>(bytes[channel] & 0xff00u >> bits);
      const auto upper = static_cast<uint8_t>(open_[channel] | byte >> open_bits_);
      if (is_full) out.push_back(upper);
      open_[channel] = is_full ? static_cast<uint8_t>(byte << (8 - open_bits_)) : upper;
    }
    open_bits_ = (open_bits_ + bits) % 8;
    bytes = bytes.subspan(channels);
    samples -= bits;
  }
}

void BitJoiner::finish(std::vector<uint8_t>& out) {
  if (open_bits_ == 0) return;
  out.insert(out.end(), open_.begin(), open_.end());
  open_bits_ = 0;
}

}  // namespace corvin::cli

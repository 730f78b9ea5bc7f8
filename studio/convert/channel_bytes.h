// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A buffer of DSD on its way through a conversion: each channel's bytes alone, as readers, encoders
// and writers have them, so that only the file's end of the way knows of its layout.

#ifndef CORVIN_STUDIO_CONVERT_CHANNEL_BYTES_H_
#define CORVIN_STUDIO_CONVERT_CHANNEL_BYTES_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace corvin::studio {

class ChannelBytes {
 public:
  ChannelBytes(std::size_t channels, std::size_t bytes) : bytes_(bytes), data_(channels * bytes) {
    for (std::size_t c = 0; c < channels; ++c) places_.push_back(&data_[c * bytes]);
  }
  ChannelBytes(const ChannelBytes&) = delete;
  ChannelBytes& operator=(const ChannelBytes&) = delete;

  std::size_t bytes() const { return bytes_; }  ///< of each channel
  std::uint8_t* const* places() const { return places_.data(); }

 private:
  std::size_t bytes_;
  std::vector<std::uint8_t> data_;
  std::vector<std::uint8_t*> places_;
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_CONVERT_CHANNEL_BYTES_H_

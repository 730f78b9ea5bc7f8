// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Streams for the decoder's tests, and one way to run them.

#ifndef CORVIN_TESTS_STUDIO_STREAMS_H_
#define CORVIN_TESTS_STUDIO_STREAMS_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "corvin.hpp"

namespace corvin::studio {

using Bytes = std::vector<std::uint8_t>;

/// Words of a fixed sequence without visible order.
class Random {
 public:
  explicit Random(std::uint32_t seed) : state_(seed) {}
  std::uint32_t operator()() {
    state_ = state_ * 6364136223846793005u + 1442695040888963407u;
    return static_cast<std::uint32_t>(state_ >> 33);
  }
  Bytes bytes(std::size_t count) {
    Bytes result(count);
    for (std::uint8_t& byte : result) byte = static_cast<std::uint8_t>((*this)());
    return result;
  }

 private:
  std::uint64_t state_;
};

inline std::uint8_t reversed(std::uint8_t byte) {
  std::uint8_t result = 0;
  for (int bit = 0; bit < 8; ++bit) {
    if ((byte >> bit & 1) != 0) result = static_cast<std::uint8_t>(result | 0x80 >> bit);
  }
  return result;
}

inline std::size_t frame_bytes(const corvin_decoder_settings& settings) {
  constexpr std::size_t kBytes[] = {2, 3, 4, 4, 8};
  return settings.channels * kBytes[settings.format];
}

/// Pushes `data` in parts of push_bytes() and pulls in parts of pull_frames() until the end.
template <typename PushBytes, typename PullFrames>
Bytes decode(Decoder& decoder, const corvin_decoder_settings& settings, const Bytes& data,
             PushBytes push_bytes, PullFrames pull_frames) {
  Bytes out;
  std::size_t pushed = 0;
  bool finished = false;
  for (;;) {
    if (pushed < data.size()) {
      const std::size_t part = std::min<std::size_t>(push_bytes(), data.size() - pushed);
      pushed += decoder.push(std::span(data).subspan(pushed, part));
    } else if (!finished) {
      decoder.finish();
      finished = true;
    }
    const std::size_t frames = pull_frames();
    const std::size_t before = out.size();
    out.resize(before + frames * frame_bytes(settings));
    const std::size_t done = decoder.pull(out.data() + before, frames);
    out.resize(before + done * frame_bytes(settings));
    if (finished && done == 0) return out;
  }
}

inline Bytes decode(const corvin_decoder_settings& settings, const Bytes& data) {
  Decoder decoder(settings);
  return decode(
      decoder, settings, data, [] { return 1u << 16; }, [] { return 10000u; });
}

/// One channel of a CORVIN_F64 result.
inline std::vector<double> channel_of(const Bytes& out, std::size_t channels, std::size_t channel) {
  std::vector<double> result(out.size() / (8 * channels));
  for (std::size_t i = 0; i < result.size(); ++i) {
    std::memcpy(&result[i], &out[(i * channels + channel) * 8], 8);
  }
  return result;
}

}  // namespace corvin::studio

#endif  // CORVIN_TESTS_STUDIO_STREAMS_H_

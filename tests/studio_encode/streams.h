// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Streams for the encoder's tests, and one way to run them.

#ifndef CORVIN_TESTS_STUDIO_ENCODE_STREAMS_H_
#define CORVIN_TESTS_STUDIO_ENCODE_STREAMS_H_

#include <cmath>

#include "tests/studio/streams.h"

namespace corvin::studio {

inline std::size_t frame_bytes(const corvin_encoder_settings& settings) {
  constexpr std::size_t kBytes[] = {2, 3, 4, 4, 8};
  return settings.channels * kBytes[settings.format];
}

/// Pushes `data` in parts of push_frames() and pulls in parts of pull_bytes() until the end.
template <typename PushFrames, typename PullBytes>
Bytes encode(Encoder& encoder, const corvin_encoder_settings& settings, const Bytes& data,
             PushFrames push_frames, PullBytes pull_bytes) {
  const std::size_t width = frame_bytes(settings);
  Bytes out;
  std::size_t pushed = 0;
  bool finished = false;
  for (;;) {
    if (pushed < data.size() / width) {
      const std::size_t part = std::min<std::size_t>(push_frames(), data.size() / width - pushed);
      pushed += encoder.push(data.data() + pushed * width, part);
    } else if (!finished) {
      encoder.finish();
      finished = true;
    }
    const std::size_t before = out.size();
    out.resize(before + pull_bytes());
    const std::size_t done = encoder.pull(std::span(out).subspan(before));
    out.resize(before + done);
    if (finished && done == 0) return out;
  }
}

inline Bytes encode(const corvin_encoder_settings& settings, const Bytes& data) {
  Encoder encoder(settings);
  return encode(
      encoder, settings, data, [] { return 10000u; }, [] { return 1u << 16; });
}

/// Samples as CORVIN_F64, the same in every channel.
inline Bytes as_f64(const std::vector<double>& samples, std::size_t channels = 1) {
  Bytes data(samples.size() * channels * 8);
  for (std::size_t i = 0; i < samples.size(); ++i) {
    for (std::size_t c = 0; c < channels; ++c) {
      std::memcpy(&data[(i * channels + c) * 8], &samples[i], 8);
    }
  }
  return data;
}

inline std::vector<double> sine(double frequency_hz, double rate_hz, double amplitude,
                                std::size_t frames) {
  std::vector<double> samples(frames);
  for (std::size_t i = 0; i < frames; ++i) {
    samples[i] = amplitude * std::sin(2 * M_PI * frequency_hz * static_cast<double>(i) / rate_hz);
  }
  return samples;
}

}  // namespace corvin::studio

#endif  // CORVIN_TESTS_STUDIO_ENCODE_STREAMS_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Streams for the tests of decoders and encoders, and one way to run them.

#ifndef CORVIN_TESTS_SUPPORT_STUDIO_STREAMS_H_
#define CORVIN_TESTS_SUPPORT_STUDIO_STREAMS_H_

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "corvin.hpp"
#include "studio/math/exact_math.h"

namespace corvin::studio {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t kIdle = 0x69;

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
  /// Little-endian samples of a tenth of full scale, so that no limiter hides a difference.
  Bytes quiet_pcm(std::size_t samples, std::size_t width) {
    Bytes result(samples * width);
    for (std::size_t i = 0; i < result.size(); ++i) {
      const std::uint32_t word = (*this)();
      result[i] = static_cast<std::uint8_t>(i % width == width - 1 ? word % 24 - 12 : word);
    }
    return result;
  }

 private:
  std::uint64_t state_;
};

inline std::uint8_t reversed(std::uint8_t byte) {
  unsigned bits = byte;
  bits = bits >> 4 | (bits & 0x0f) << 4;
  bits = (bits & 0xcc) >> 2 | (bits & 0x33) << 2;
  bits = (bits & 0xaa) >> 1 | (bits & 0x55) << 1;
  return static_cast<std::uint8_t>(bits);
}

/// What work ends with: CORVIN_OK, or the status of the error that it throws.
template <typename Work>
int status_of(Work work) {
  try {
    work();
  } catch (const Error& error) {
    return error.status();
  }
  return CORVIN_OK;
}

/// FNV-1a.
inline std::uint64_t checksum(const Bytes& bytes) {
  std::uint64_t sum = 0xcbf29ce484222325u;
  for (std::uint8_t byte : bytes) sum = (sum ^ byte) * 0x100000001b3u;
  return sum;
}

/// Channels in turn, `block` bytes of each, filled up with silence.
inline Bytes layout(const std::vector<Bytes>& channels, std::size_t block,
                    std::uint32_t order = CORVIN_MSB_FIRST) {
  Bytes result;
  for (std::size_t at = 0; at < channels[0].size(); at += block) {
    for (const Bytes& channel : channels) {
      for (std::size_t i = at; i < at + block; ++i) {
        const std::uint8_t byte = i < channel.size() ? channel[i] : kIdle;
        result.push_back(order == CORVIN_LSB_FIRST ? reversed(byte) : byte);
      }
    }
  }
  return result;
}

template <typename Settings>
std::size_t frame_bytes(const Settings& settings) {
  constexpr std::size_t kBytes[] = {2, 3, 4, 4, 8, 3};
  return settings.channels * kBytes[settings.format];
}

/// Pushes `count` items by push(first, items) and pulls items of `width` bytes by pull(to, items)
/// until the end, in parts that `random` chooses, if there is one.
template <typename Coder, typename Push, typename Pull>
Bytes run(Coder& coder, std::size_t count, Push push, std::size_t width, Pull pull,
          Random* random) {
  const auto part = [random] { return random == nullptr ? 10000 : (*random)() % 30000; };
  Bytes out;
  std::size_t pushed = 0;
  bool finished = false;
  for (;;) {
    if (pushed < count) {
      pushed += push(pushed, std::min<std::size_t>(part(), count - pushed));
    } else if (!finished) {
      coder.finish();
      finished = true;
    }
    const std::size_t items = part() + 1;
    const std::size_t before = out.size();
    out.resize(before + items * width);
    const std::size_t done = pull(&out[before], items);
    out.resize(before + done * width);
    if (finished && done == 0) return out;
  }
}

inline Bytes decode(Decoder& decoder, const corvin_decoder_settings& settings, const Bytes& data,
                    Random* random = nullptr) {
  return run(
      decoder, data.size(),
      [&](std::size_t at, std::size_t bytes) {
        return decoder.push(std::span(data).subspan(at, bytes));
      },
      frame_bytes(settings),
      [&](std::uint8_t* to, std::size_t frames) { return decoder.pull(to, frames); }, random);
}

inline Bytes decode(const corvin_decoder_settings& settings, const Bytes& data) {
  Decoder decoder(settings);
  return decode(decoder, settings, data);
}

inline Bytes encode(Encoder& encoder, const corvin_encoder_settings& settings, const Bytes& data,
                    Random* random = nullptr) {
  const std::size_t width = frame_bytes(settings);
  return run(
      encoder, data.size() / width,
      [&](std::size_t at, std::size_t frames) {
        return encoder.push(data.data() + at * width, frames);
      },
      1, [&](std::uint8_t* to, std::size_t bytes) { return encoder.pull(std::span(to, bytes)); },
      random);
}

inline Bytes encode(const corvin_encoder_settings& settings, const Bytes& data) {
  Encoder encoder(settings);
  return encode(encoder, settings, data);
}

/// One channel of a CORVIN_F64 result.
inline std::vector<double> channel_of(const Bytes& out, std::size_t channels, std::size_t channel) {
  std::vector<double> result(out.size() / (8 * channels));
  for (std::size_t i = 0; i < result.size(); ++i) {
    std::memcpy(&result[i], &out[(i * channels + channel) * 8], 8);
  }
  return result;
}

/// The samples of a stream of one channel.
inline std::vector<double> decode_mono(std::uint32_t dsd_rate, std::uint32_t pcm_rate,
                                       const Bytes& data) {
  DecoderSettings settings;
  settings.dsd_rate = dsd_rate;
  settings.pcm_rate = pcm_rate;
  settings.channels = 1;
  settings.format = CORVIN_F64;
  return channel_of(decode(settings, data), 1, 0);
}

/// Samples as CORVIN_F64, the same in every channel.
inline Bytes as_f64(const std::vector<double>& samples, std::size_t channels = 1) {
  Bytes data(samples.size() * channels * 8);
  for (std::size_t i = 0; i < samples.size() * channels; ++i) {
    std::memcpy(&data[i * 8], &samples[i / channels], 8);
  }
  return data;
}

/// The same to the last bit with every C library: a modulator's bits hang on it.
inline std::vector<double> sine(double frequency_hz, double rate_hz, double amplitude,
                                std::size_t frames) {
  std::vector<double> samples(frames);
  for (std::size_t i = 0; i < frames; ++i) {
    const double turns = frequency_hz * static_cast<double>(i) / rate_hz;
    samples[i] = amplitude * sine_cosine(2 * kPi * (turns - std::floor(turns))).sine;
  }
  return samples;
}

}  // namespace corvin::studio

#endif  // CORVIN_TESTS_SUPPORT_STUDIO_STREAMS_H_

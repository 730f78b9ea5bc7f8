// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/pcm/pack.h"

#include <bit>
#include <cstring>
#include <type_traits>

namespace corvin::studio {
namespace {

template <typename Word, typename In, typename Convert>
void pack_words(const In* const* in, std::size_t channels, std::size_t count, std::uint8_t* out,
                Convert convert) {
  for (std::size_t channel = 0; channel < channels; ++channel) {
    std::uint8_t* place = out + channel * sizeof(Word);
    const std::size_t stride = channels * sizeof(Word);
    for (std::size_t i = 0; i < count; ++i, place += stride) {
      const Word word = convert(in[channel][i]);
      if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(place, &word, sizeof word);
      } else {
        std::uint8_t bytes[sizeof word];
        std::memcpy(bytes, &word, sizeof word);
        for (std::size_t b = 0; b < sizeof word; ++b) place[b] = bytes[sizeof word - 1 - b];
      }
    }
  }
}

// Four bytes at a time, of which the next sample overwrites the fourth; so the last frame is not
// for this loop. The stereo loop is the general one with a number that the compiler knows.
void pack_triples(const std::int32_t* const* in, std::size_t channels, std::size_t count,
                  std::uint8_t* out) {
  const auto pack = [&](auto known_channels) {
    for (std::size_t i = 0; i < count; ++i) {
      for (std::size_t channel = 0; channel < known_channels; ++channel, out += 3) {
        std::memcpy(out, &in[channel][i], 4);
      }
    }
  };
  if (channels == 2) return pack(std::integral_constant<std::size_t, 2>());
  pack(channels);
}

}  // namespace

void pack_integers(const std::int32_t* const* in, std::size_t channels, std::size_t count,
                   unsigned bytes, std::uint8_t* out) {
  if (bytes == 2) {
    return pack_words<std::int16_t>(in, channels, count, out, [](std::int32_t value) {
      return static_cast<std::int16_t>(value);
    });
  }
  if (bytes == 4) {
    return pack_words<std::int32_t>(in, channels, count, out,
                                    [](std::int32_t value) { return value; });
  }
  std::size_t first = 0;
  if (std::endian::native == std::endian::little && count > 1) {
    first = count - 1;
    pack_triples(in, channels, first, out);
    out += first * channels * 3;
  }
  for (std::size_t i = first; i < count; ++i) {
    for (std::size_t channel = 0; channel < channels; ++channel, out += 3) {
      const auto value = static_cast<std::uint32_t>(in[channel][i]);
      out[0] = static_cast<std::uint8_t>(value);
      out[1] = static_cast<std::uint8_t>(value >> 8);
      out[2] = static_cast<std::uint8_t>(value >> 16);
    }
  }
}

void pack_floats(const double* const* in, std::size_t channels, std::size_t count, double factor,
                 unsigned bytes, std::uint8_t* out) {
  if (bytes == 4) {
    return pack_words<float>(in, channels, count, out,
                             [factor](double value) { return static_cast<float>(value * factor); });
  }
  pack_words<double>(in, channels, count, out, [factor](double value) { return value * factor; });
}

void split_frames(const std::uint8_t* in, std::size_t channels, std::size_t count,
                  std::size_t bytes, std::uint8_t* const* out) {
  for (std::size_t c = 0; c < channels; ++c) {
    for (std::size_t i = 0; i < count; ++i) {
      std::memcpy(out[c] + i * bytes, in + (i * channels + c) * bytes, bytes);
    }
  }
}

}  // namespace corvin::studio

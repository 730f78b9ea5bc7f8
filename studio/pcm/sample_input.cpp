// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//

#include "studio/pcm/sample_input.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#include "corvin.h"

namespace corvin::studio {
namespace {

template <typename Word>
Word little_endian(const std::uint8_t* in) {
  Word word = 0;
  if constexpr (std::endian::native == std::endian::little) {
    std::memcpy(&word, in, sizeof word);
  } else {
    for (std::size_t b = sizeof word; b-- > 0;) word = static_cast<Word>(word << 8 | in[b]);
  }
  return word;
}

template <typename Read>
void read_all(const std::uint8_t* in, std::size_t stride, std::size_t count, double factor,
              double* out, Read read) {
  for (std::size_t i = 0; i < count; ++i, in += stride) {
    const double value = read(in) * factor;
    // A NaN fails the first comparison and keeps the 0.
    out[i] = value == value ? std::clamp(value, -kLoudestSample, kLoudestSample) : 0.0;
  }
}

}  // namespace

void read_samples(const std::uint8_t* in, std::size_t stride, std::size_t count,
                  std::uint32_t format, double gain, double* out) {
  switch (format) {
    case CORVIN_S16:
      return read_all(in, stride, count, std::ldexp(gain, -15), out, [](const std::uint8_t* at) {
        return static_cast<double>(static_cast<std::int16_t>(little_endian<std::uint16_t>(at)));
      });
    case CORVIN_S24:
    case CORVIN_S20:  // which is that with zeros below
      return read_all(in, stride, count, std::ldexp(gain, -31), out, [](const std::uint8_t* at) {
        const std::uint32_t word =
            std::uint32_t{at[0]} << 8 | std::uint32_t{at[1]} << 16 | std::uint32_t{at[2]} << 24;
        return static_cast<double>(static_cast<std::int32_t>(word));
      });
    case CORVIN_S32:
      return read_all(in, stride, count, std::ldexp(gain, -31), out, [](const std::uint8_t* at) {
        return static_cast<double>(static_cast<std::int32_t>(little_endian<std::uint32_t>(at)));
      });
    case CORVIN_F32:
      return read_all(in, stride, count, gain, out, [](const std::uint8_t* at) {
        return static_cast<double>(std::bit_cast<float>(little_endian<std::uint32_t>(at)));
      });
    default:
      return read_all(in, stride, count, gain, out, [](const std::uint8_t* at) {
        return std::bit_cast<double>(little_endian<std::uint64_t>(at));
      });
  }
}

}  // namespace corvin::studio

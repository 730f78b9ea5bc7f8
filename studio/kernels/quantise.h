// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// From double to integers: scale, triangular dither, limit, round to the nearest (ties to even).
//
// The dither is a function of (key, index) alone, so that it does not depend on chunks or threads:
// h = mix(key + index), value (h & 0xffff) + (h >> 16) - 65535 in units of 1/65536 of a step, which
// is the sum of two uniform variables. Every operation is exact or rounds once, so all builds
// agree.

#ifndef CORVIN_STUDIO_KERNELS_QUANTISE_H_
#define CORVIN_STUDIO_KERNELS_QUANTISE_H_

#include <cstddef>
#include <cstdint>

#include "studio/kernels/builds.h"

namespace corvin::studio {

struct QuantiseScale {
  double factor = 1.0;  ///< steps per unit of input
  double low = 0.0;     ///< limits in steps, within int32
  double high = 0.0;
  bool dither = false;
};

struct QuantiseTally {
  double peak = 0.0;        ///< largest |in|
  std::uint64_t clips = 0;  ///< samples that met a limit, before rounding
};

/// @param in     count finite samples, |in x factor| < 2^40; any address
/// @param key    of the dither
/// @param index  of the first sample, wraps
/// @param out    count integers
/// @param tally  is added to
using Quantise = void (*)(const double* in, std::size_t count, const QuantiseScale& scale,
                          std::uint32_t key, std::uint32_t index, std::int32_t* out,
                          QuantiseTally& tally);

struct QuantiseVariant {
  InstructionSet set;
  Quantise run = nullptr;
};

template <>
std::span<const QuantiseVariant* const> builds<QuantiseVariant>();

/// A bijection of 32-bit words whose outputs for neighbouring inputs look independent.
constexpr std::uint32_t mix32(std::uint32_t h) {
  h ^= h >> 16;
  h *= 0x7feb352du;
  h ^= h >> 15;
  h *= 0x846ca68bu;
  h ^= h >> 16;
  return h;
}

/// The dither of one sample, in steps.
constexpr double triangular_dither(std::uint32_t key, std::uint32_t index) {
  const std::uint32_t h = mix32(key + index);
  return static_cast<double>(static_cast<std::int32_t>((h & 0xffff) + (h >> 16)) - 65535) / 65536;
}

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_KERNELS_QUANTISE_H_

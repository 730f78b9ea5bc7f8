// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Samples of separate channels to the bytes of a PCM buffer, little-endian.

#ifndef CORVIN_STUDIO_PCM_PACK_H_
#define CORVIN_STUDIO_PCM_PACK_H_

#include <cstddef>
#include <cstdint>

namespace corvin::studio {

/// Writes the low `bytes` (2, 3 or 4) bytes of each integer.
/// @param in        in[channels], count integers each
/// @param out       count x channels x bytes bytes, interleaved; any address
void pack_integers(const std::int32_t* const* in, std::size_t channels, std::size_t count,
                   unsigned bytes, std::uint8_t* out);

/// Writes in x factor as float (bytes = 4) or double (8); arguments as above.
void pack_floats(const double* const* in, std::size_t channels, std::size_t count, double factor,
                 unsigned bytes, std::uint8_t* out);

/// Interleaved samples of `bytes` bytes to places of each channel: out[channels].
void split_frames(const std::uint8_t* in, std::size_t channels, std::size_t count,
                  std::size_t bytes, std::uint8_t* const* out);

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_PCM_PACK_H_

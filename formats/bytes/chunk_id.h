// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The four characters that name a chunk of a container or a frame of a tag.

#ifndef CORVIN_FORMATS_BYTES_CHUNK_ID_H_
#define CORVIN_FORMATS_BYTES_CHUNK_ID_H_

#include <array>
#include <cstdint>

namespace corvin::formats {

/// Four characters as they stand in the file.
using ChunkId = std::array<std::uint8_t, 4>;

constexpr ChunkId MakeChunkId(const char (&text)[5]) {
  return {static_cast<std::uint8_t>(text[0]), static_cast<std::uint8_t>(text[1]),
          static_cast<std::uint8_t>(text[2]), static_cast<std::uint8_t>(text[3])};
}

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_BYTES_CHUNK_ID_H_

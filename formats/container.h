// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The three container kinds and the four bytes by which a file tells its own.

#ifndef CORVIN_FORMATS_CONTAINER_H_
#define CORVIN_FORMATS_CONTAINER_H_

#include <array>
#include <cstdint>

namespace corvin::formats {

/// Four characters as they stand in the file.
using ChunkId = std::array<std::uint8_t, 4>;

constexpr ChunkId MakeChunkId(const char (&text)[5]) {
  return {static_cast<std::uint8_t>(text[0]), static_cast<std::uint8_t>(text[1]),
          static_cast<std::uint8_t>(text[2]), static_cast<std::uint8_t>(text[3])};
}

/// The numbers are part of the public interface.
enum ContainerKind : std::uint32_t { kUnknown = 0, kDsdiff = 1, kDsf = 2, kOneBit = 3 };

constexpr ContainerKind ContainerKindOf(const ChunkId& magic) {
  if (magic == MakeChunkId("1bit")) return kOneBit;
  if (magic == MakeChunkId("FRM8")) return kDsdiff;
  if (magic == MakeChunkId("DSD ")) return kDsf;
  return kUnknown;
}

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_CONTAINER_H_

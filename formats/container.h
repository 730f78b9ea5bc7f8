// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The three container kinds and the four bytes by which a file tells its own.

#ifndef CORVIN_FORMATS_CONTAINER_H_
#define CORVIN_FORMATS_CONTAINER_H_

#include <cstdint>

#include "formats/bytes/chunk_id.h"

namespace corvin::formats {

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

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The chunks of WAV, RF64 and AIFF files: where they lie, and what their headers say of their size,
// which need not be true.

#ifndef CORVIN_CLI_FILES_CHUNKS_H_
#define CORVIN_CLI_FILES_CHUNKS_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvin::cli {

struct Chunk {
  std::string id;
  uint64_t offset = 0;  // of the content
  uint64_t stated = 0;  // bytes of content, by the header
  uint64_t bytes = 0;   // of it that are there
};

struct Chunks {
  bool is_big_endian = false;  // AIFF
  bool is_long = false;        // RF64
  std::vector<Chunk> all;      // in the file's order; the last one may be cut short

  /** The first chunk of an id; null: there is none. */
  const Chunk* find(std::string_view id) const;
};

/** Walks the file; no value when it is none of the three kinds or cannot be read. */
std::optional<Chunks> chunks_of(int descriptor);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_CHUNKS_H_

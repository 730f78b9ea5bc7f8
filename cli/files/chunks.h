// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The chunks of WAV, RF64 and AIFF files: where they lie, and what their headers say of their size,
// which need not be true.

#ifndef CORVIN_CLI_FILES_CHUNKS_H_
#define CORVIN_CLI_FILES_CHUNKS_H_

#include <cstdint>
#include <optional>
#include <span>
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

/** Puts bits in place of those that the file states for its samples, in those kinds that can say
 *  fewer than the samples' room; false on failure, errno tells why. */
bool state_significant_bits(int descriptor, uint32_t bits);

/** Turns a chunk of peaks, which states when it was written, into one that readers skip; false as
 *  above. */
bool hide_peaks(int descriptor);

/** States the bytes that follow the file's first eight. */
bool state_form_bytes(int descriptor, const Chunks& chunks, uint64_t bytes);

/** Puts whole chunks behind the last one and counts them in the file's size; false as above. The file
 *  may also be of a kind that does not count. */
bool append_to_form(int descriptor, std::span<const std::byte> chunks);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_CHUNKS_H_

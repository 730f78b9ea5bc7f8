// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Walks the chunks of a DSF or DSDIFF file: an identifier of four characters, a size of 64 bits, a
// body. The cursor checks every read and every move against the bytes that are really there, so a
// walk over a lying file ends. How a walk interprets the sizes (whether they count the header, what
// an odd one means) is its own matter.

#ifndef CORVIN_FORMATS_CHUNK_CURSOR_H_
#define CORVIN_FORMATS_CHUNK_CURSOR_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "formats/bytes/byte_order.h"
#include "formats/bytes/byte_source.h"
#include "formats/container.h"

namespace corvin::formats {

inline constexpr std::uint64_t kChunkHeaderBytes = 12;

struct ChunkHeader {
  ChunkId id{};
  std::uint64_t size = 0;  ///< as the file states it, at most INT64_MAX
};

/// A position in a seekable stream or a byte source that it does not own. Between two calls the
/// stream stands at position(); whoever moves the stream itself makes a new cursor.
class ChunkCursor {
 public:
  /// Starts where the stream stands. In a stream that cannot seek, every read fails.
  ChunkCursor(std::FILE* file, ByteOrder order);
  /// Starts at the first byte.
  ChunkCursor(ByteSource& source, ByteOrder order);

  /// Reads exactly `bytes` bytes, or returns false; nothing is to be read after that.
  bool Read(void* to, std::size_t bytes);

  /// Reads an unsigned integer in the container's byte order.
  template <class UInt>
  bool Read(UInt& value) {
    std::array<std::uint8_t, sizeof(UInt)> bytes;
    if (!Read(bytes.data(), bytes.size())) return false;
    value = Load<UInt>(order_, bytes.data());
    return true;
  }

  /// Reads the next header. False when fewer than 12 bytes are left and for a size that is negative
  /// as a signed number: a walk would go backwards by it. Nor after 65536 headers.
  bool ReadHeader(ChunkHeader& header);

  /// Moves forward; false, and nothing moves, when the end is nearer than that.
  bool Skip(std::uint64_t bytes);

  /// Moves back over bytes just read; false, and nothing moves, before the start of the file.
  bool StepBack(std::uint64_t bytes);

  /// Moves anywhere up to the end; false, and nothing moves, beyond it.
  bool SeekTo(std::uint64_t offset) { return offset <= file_size_ && MoveTo(offset); }

  std::uint64_t position() const { return position_; }
  std::uint64_t file_size() const { return file_size_; }
  std::uint64_t left() const { return position_ < file_size_ ? file_size_ - position_ : 0; }

 private:
  bool MoveTo(std::uint64_t offset);

  std::FILE* file_;  ///< null when source_ is not
  ByteSource* source_;
  ByteOrder order_;
  std::uint64_t position_ = 0;
  std::uint64_t file_size_ = 0;
  int headers_ = 0;  ///< read so far
};

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_CHUNK_CURSOR_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "formats/chunk_cursor.h"

#include <sys/types.h>

namespace corvin::formats {

static_assert(sizeof(off_t) == 8, "DSD files are larger than 2 GiB");

ChunkCursor::ChunkCursor(std::FILE* file, ByteOrder order)
    : file_(file), source_(nullptr), order_(order) {
  const off_t start = ftello(file);
  if (start < 0 || fseeko(file, 0, SEEK_END) != 0) return;
  const off_t end = ftello(file);
  if (fseeko(file, start, SEEK_SET) != 0 || end < 0) return;
  position_ = static_cast<std::uint64_t>(start);
  file_size_ = static_cast<std::uint64_t>(end);
}

ChunkCursor::ChunkCursor(ByteSource& source, ByteOrder order)
    : file_(nullptr), source_(&source), order_(order), file_size_(source.Size()) {}

bool ChunkCursor::Read(void* to, std::size_t bytes) {
  if (left() < bytes) return false;
  const std::size_t count =
      file_ != nullptr ? std::fread(to, 1, bytes, file_) : source_->Read(position_, to, bytes);
  position_ += count;
  return count == bytes;
}

bool ChunkCursor::ReadHeader(ChunkHeader& header) {
  // No sound file has so many chunks; a large one of zeros would seem to, 12 bytes each.
  constexpr int kMaxHeaders = 1 << 16;
  return headers_++ < kMaxHeaders && Read(header.id.data(), header.id.size()) &&
         Read(header.size) && header.size <= static_cast<std::uint64_t>(INT64_MAX);
}

bool ChunkCursor::Skip(std::uint64_t bytes) { return bytes <= left() && MoveTo(position_ + bytes); }

bool ChunkCursor::StepBack(std::uint64_t bytes) {
  return bytes <= position_ && MoveTo(position_ - bytes);
}

bool ChunkCursor::MoveTo(std::uint64_t offset) {
  if (file_ != nullptr && fseeko(file_, static_cast<off_t>(offset), SEEK_SET) != 0) return false;
  position_ = offset;
  return true;
}

}  // namespace corvin::formats

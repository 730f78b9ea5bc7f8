// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/write_log.h"

#include <xxhash.h>

#include "cli/files/descriptor_bytes.h"

namespace corvin::cli {
void WriteLog::add(uint64_t offset, std::span<const std::byte> bytes) {
  const uint64_t end = offset + bytes.size();
  // The sound goes to the end of the file; only a header comes behind it in time and lies before it.
  const bool is_appended = pieces_.empty() || pieces_.back().offset + pieces_.back().size <= offset;
  if (!is_appended)
    std::erase_if(pieces_, [&](const Piece& piece) {
      return piece.offset < end && piece.offset + piece.size > offset;
    });
  pieces_.push_back({offset, bytes.size(), XXH3_64bits(bytes.data(), bytes.size())});
}

bool WriteLog::is_in(int descriptor) const {
  std::vector<std::byte> bytes;
  for (const Piece& piece : pieces_) {
    bytes.resize(static_cast<size_t>(piece.size));
    if (read_at(descriptor, piece.offset, bytes) != static_cast<int64_t>(piece.size) ||
        XXH3_64bits(bytes.data(), bytes.size()) != piece.hash)
      return false;
  }
  return true;
}

}  // namespace corvin::cli

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/id3_chunk.h"

#include <fcntl.h>

#include <cstdint>

#include "cli/files/chunks.h"
#include "cli/files/descriptor_bytes.h"

namespace corvin::cli {
namespace {

constexpr uint64_t kMostBytes = (1 << 28) + 20;  // of a block, header and footer included

std::vector<std::byte> block_in(int descriptor) {
  const auto chunks = chunks_of(descriptor);
  if (!chunks) return {};
  for (const Chunk& chunk : chunks->all) {
    if (chunk.id != "id3 " && chunk.id != "ID3 ") continue;
    if (chunk.bytes < chunk.stated || chunk.bytes > kMostBytes) return {};
    std::vector<std::byte> block(static_cast<size_t>(chunk.bytes));
    const int64_t got = read_at(descriptor, chunk.offset, block);
    return got == static_cast<int64_t>(block.size()) ? block : std::vector<std::byte>();
  }
  return {};
}

}  // namespace

std::vector<std::byte> id3_chunk(const std::string& path) {
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return {};
  std::vector<std::byte> block = block_in(descriptor);
  close(descriptor);
  return block;
}

}  // namespace corvin::cli

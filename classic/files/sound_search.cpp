// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The conversion's walks over the three containers.

#include "classic/files/sound_search.h"

#include <algorithm>
#include <array>

#include "formats/chunk_cursor.h"

namespace {

using corvin::formats::ByteOrder;
using corvin::formats::ChunkCursor;
using corvin::formats::ChunkHeader;
using corvin::formats::ChunkId;
using corvin::formats::kChunkHeaderBytes;
using corvin::formats::Load;
using corvin::formats::MakeChunkId;

constexpr ChunkId kUncompressed = MakeChunkId("DSD ");

/// What four bytes have to be for the identifier of a chunk.
bool IsPrintable(const ChunkId& id) {
  return std::all_of(id.begin(), id.end(), [](std::uint8_t c) { return c >= ' ' && c <= '~'; });
}

/// What the property chunk of a DSDIFF file tells.
struct Properties {
  std::uint32_t rate_hz = 0;
  std::uint16_t channels = 0;
  std::optional<ChunkId> sound_id;  ///< identifier of the sound chunk; none before "CMPR"
};

/// The compression type and a name, which is padded to an even size. Files disagree on whether the
/// size counts the pad byte, and on whether there is one: the identifier that follows decides.
bool ReadCompression(ChunkCursor& cursor, std::uint64_t size, Properties& found) {
  const std::uint64_t body = cursor.position();
  ChunkId compression;
  std::uint8_t length;
  if (!cursor.Read(compression.data(), compression.size()) || !cursor.Read(length)) return false;
  const std::uint64_t padded = (compression.size() + 1 + length + 1) / 2 * 2;
  found.sound_id = compression;
  if (size >= padded) return cursor.SeekTo(body + std::min(size, cursor.file_size()));
  ChunkId next;
  if (cursor.SeekTo(body + padded) && cursor.Read(next.data(), next.size()) && IsPrintable(next))
    return cursor.StepBack(next.size());
  return size >= compression.size() && cursor.SeekTo(body + size);
}

/// Walks the sub-chunks. They are counted off by their declared sizes and read by their contents:
/// our own files declare stereo sizes for every channel count. False ends the search.
bool WalkProperties(ChunkCursor& cursor, std::uint64_t size, Properties& found) {
  ChunkId type;
  if (size == 0) return cursor.Read(type.data(), type.size());
  if (size > cursor.left() || !cursor.Read(type.data(), type.size())) return false;
  std::uint64_t remaining = size - std::min<std::uint64_t>(size, type.size());
  // Less is left over where a pad byte is not counted.
  while (remaining >= kChunkHeaderBytes) {
    ChunkHeader chunk;
    if (!cursor.ReadHeader(chunk)) return false;
    if (found.sound_id == chunk.id) return cursor.StepBack(kChunkHeaderBytes);
    if (chunk.id == MakeChunkId("FS  ")) {
      if (!cursor.Read(found.rate_hz)) return false;
    } else if (chunk.id == MakeChunkId("CHNL")) {
      if (!cursor.Read(found.channels) || !cursor.Skip(4ull * found.channels)) return false;
    } else if (chunk.id == MakeChunkId("CMPR")) {
      if (!ReadCompression(cursor, chunk.size, found)) return false;
    } else if (chunk.size > remaining || !cursor.Skip(chunk.size)) {
      return false;
    }
    remaining -= kChunkHeaderBytes;
    remaining -= std::min(remaining, chunk.size);
  }
  return true;
}

/// DSF sound of which `left` bytes are there: a group of blocks that is cut counts as a whole.
DsdSound WithinFile(DsdSound sound, std::uint64_t left) {
  const std::uint64_t group = std::uint64_t{sound.block_bytes} * sound.channels;
  const std::uint64_t groups = group > 0 ? left / group + (left % group != 0) : 0;
  const std::uint64_t per_channel = groups * sound.block_bytes;
  if (sound.sample_count / 8 > per_channel) sound.sample_count = per_channel * 8;
  sound.bytes = sound.sample_count / 8 * sound.channels;
  return sound;
}

}  // namespace

SoundSearch::SoundSearch(std::FILE* file) : file_(file) {
  ChunkId magic;
  ChunkCursor cursor(file, ByteOrder::kLittle);
  if (!cursor.Read(magic.data(), magic.size())) return;
  if (magic == MakeChunkId("1bit")) {
    kind_ = Kind::kOneBit;
  } else if (magic == MakeChunkId("FRM8")) {
    kind_ = Kind::kDsdiff;
  } else if (magic != MakeChunkId("DSD ") || cursor.Skip(24)) {
    // A file of no known kind is searched for DSF chunks behind its first four bytes.
    kind_ = Kind::kDsf;
  }
}

std::optional<DsdSound> SoundSearch::Next() {
  switch (kind_) {
    case Kind::kDsf:
      return NextDsf();
    case Kind::kDsdiff:
      kind_ = Kind::kDone;
      return FindDsdiff();
    case Kind::kOneBit:
      kind_ = Kind::kDone;
      return FindOneBit();
    case Kind::kDone:
      break;
  }
  return std::nullopt;
}

/// Sizes count the 12 bytes of the header, and smaller ones skip nothing.
std::optional<DsdSound> SoundSearch::NextDsf() {
  ChunkCursor cursor(file_, ByteOrder::kLittle);
  ChunkHeader chunk;
  while (cursor.ReadHeader(chunk)) {
    if (chunk.id == MakeChunkId("fmt ")) {
      std::array<std::uint8_t, 40> body;
      if (!cursor.Read(body.data(), body.size())) break;
      const auto word = [&](std::size_t at) {
        return Load<std::uint32_t>(ByteOrder::kLittle, &body[at]);
      };
      DsdSound& format = dsf_format_.emplace();
      format.dsf = true;
      format.channels = word(12);
      format.rate_hz = word(16);
      format.sample_count = Load<std::uint64_t>(ByteOrder::kLittle, &body[24]);
      format.block_bytes = word(32);
    } else if (chunk.id == MakeChunkId("data")) {
      if (!dsf_format_) break;
      return WithinFile(*dsf_format_, cursor.left());
    } else if (chunk.size > kChunkHeaderBytes - 1 && !cursor.Skip(chunk.size - kChunkHeaderBytes)) {
      break;
    }
  }
  kind_ = Kind::kDone;
  return std::nullopt;
}

std::optional<DsdSound> SoundSearch::FindDsdiff() {
  ChunkCursor cursor(file_, ByteOrder::kBig);
  if (!cursor.Skip(12)) return std::nullopt;
  Properties properties;
  ChunkHeader chunk;
  while (cursor.ReadHeader(chunk)) {
    if (chunk.id == MakeChunkId("PROP")) {
      if (!WalkProperties(cursor, chunk.size, properties)) break;
    } else if (properties.sound_id == chunk.id) {
      if (chunk.id != kUncompressed) break;
      DsdSound sound;
      sound.channels = properties.channels;
      sound.rate_hz = properties.rate_hz;
      sound.bytes = chunk.size;
      if (sound.channels > 0) {
        // A file that is cut short still has sound, to its last byte of every channel.
        if (chunk.size > cursor.left())
          sound.bytes = cursor.left() / sound.channels * sound.channels;
        sound.sample_count = sound.bytes * 8 / sound.channels;
      }
      return sound;
    } else if (!cursor.Skip(chunk.id == MakeChunkId("FVER") ? 4 : chunk.size)) {
      break;
    }
  }
  return std::nullopt;
}

std::optional<DsdSound> SoundSearch::FindOneBit() {
  ChunkCursor cursor(file_, ByteOrder::kBig);
  constexpr std::size_t kMagicBytes = 4;
  std::array<std::uint8_t, 128 - kMagicBytes> header;
  if (!cursor.Read(header.data(), header.size())) return std::nullopt;
  const auto word = [&](std::size_t offset) {
    return Load<std::uint32_t>(ByteOrder::kBig, &header[offset - kMagicBytes]);
  };
  // The low word of the end comes first, in reader and writer alike.
  const std::uint64_t end = std::min(std::uint64_t{word(16)} << 32 | word(12), cursor.file_size());
  const std::uint64_t begin = word(24);
  const bool moved = begin >= cursor.position() ? cursor.Skip(begin - cursor.position())
                                                : cursor.StepBack(cursor.position() - begin);
  if (!moved || begin > end) return std::nullopt;
  DsdSound sound;
  sound.bytes = end - begin;
  sound.channels = header[44 - kMagicBytes];
  sound.rate_hz = word(36);
  if (sound.channels > 0) sound.sample_count = sound.bytes * 8 / sound.channels;
  return sound;
}

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What a DSD file holds, from its headers alone. The conversion reads the headers by rules of its
// own, which differ in how chunks are skipped and how lengths are counted.

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

#include "corvin.h"
#include "formats/bytes/input_file.h"
#include "formats/chunk_cursor.h"
#include "formats/container.h"

namespace corvin::formats {
namespace {

constexpr std::uint32_t kDefaultBlockBytes = 4096;

/// The query of one DSDIFF file. Every step returns false when the walk cannot go on; what it has
/// found by then stands in the record.
class DsdiffQuery {
 public:
  DsdiffQuery(std::FILE* file, DSD_INFO& info) : cursor_(file, ByteOrder::kBig), info_(info) {}

  void Run() {
    info_.bitsPerSample = 1;
    ChunkHeader chunk;
    while (cursor_.ReadHeader(chunk)) {
      if (chunk.id == MakeChunkId("FVER")) {
        std::uint32_t version;
        if (!cursor_.Read(version)) break;
      } else if (chunk.id == MakeChunkId("PROP")) {
        if (!ReadProperties(chunk.size)) break;
      } else if (sound_id_ == chunk.id) {
        // The stated size counts even when the file is cut short, as the other containers' lengths
        // do. Only one whose bits no 64-bit count can hold is no length.
        if (chunk.size <= UINT64_MAX / 8) info_.sampleCount = chunk.size * 8;
        break;
      } else if (!cursor_.Skip(chunk.size)) {  // no pad byte after an odd size
        break;
      }
    }
    if (info_.channels != 0) info_.sampleCount /= info_.channels;
  }

 private:
  /// The walk counts by the stated sizes and moves by what it reads: our own files state the sizes
  /// of a stereo file for every channel count, and other files' property chunks may be cut short.
  bool ReadProperties(std::uint64_t size) {
    std::uint32_t type;
    if (!cursor_.Read(type)) return false;
    std::uint64_t remaining = size - (size < 4 ? size : 4);
    while (remaining >= kChunkHeaderBytes) {
      ChunkHeader chunk;
      if (!cursor_.ReadHeader(chunk)) return false;
      if (chunk.id == MakeChunkId("FS  ")) {
        if (!cursor_.Read(info_.samplingFrequency)) return false;
      } else if (chunk.id == MakeChunkId("CHNL")) {
        std::uint16_t channels;
        if (!cursor_.Read(channels)) return false;
        info_.channels = channels;
        if (!cursor_.Skip(std::uint64_t{channels} * 4)) return false;
      } else if (chunk.id == MakeChunkId("CMPR")) {
        if (!ReadCompression(chunk.size)) return false;
      } else if (sound_id_ == chunk.id) {
        return cursor_.StepBack(kChunkHeaderBytes);
      } else if (chunk.size < 1) {
        return true;
      } else if (!cursor_.Skip(chunk.size)) {
        return false;
      }
      remaining -= kChunkHeaderBytes;
      if (chunk.size >= remaining) return true;
      remaining -= chunk.size;
    }
    return true;
  }

  /// The compression type is the identifier of the sound chunk to look for.
  bool ReadCompression(std::uint64_t size) {
    ChunkId type;
    std::uint8_t length;
    if (!cursor_.Read(type.data(), type.size()) || !cursor_.Read(length)) return false;
    sound_id_ = type;
    if (!cursor_.Read(info_.compressionName, length)) return false;
    // The name is padded to an even size, which some files' stated size leaves out.
    const std::uint64_t used = std::uint64_t{5} + length;
    const std::uint64_t padded = used + used % 2;
    return cursor_.Skip((size > padded ? size : padded) - used);
  }

  ChunkCursor cursor_;
  DSD_INFO& info_;
  std::optional<ChunkId> sound_id_;  // none, which no chunk matches, before the compression type
};

void QueryDsf(std::FILE* file, DSD_INFO& info) {
  ChunkCursor cursor(file, ByteOrder::kLittle);
  ChunkHeader chunk;
  while (cursor.ReadHeader(chunk)) {
    if (chunk.id == MakeChunkId("fmt ")) {
      std::array<std::uint8_t, 40> body;
      if (!cursor.Read(body.data(), body.size())) return;
      const auto word = [&](int at) { return Load<std::uint32_t>(ByteOrder::kLittle, &body[at]); };
      info.channels = word(12);
      info.samplingFrequency = word(16);
      info.bitsPerSample = word(20);
      info.sampleCount = Load<std::uint64_t>(ByteOrder::kLittle, &body[24]);
      info.blockSizePerChannel = word(32);
      return;
    }
    // The size is taken from the end of the header although DSF sizes count the header: the chunk
    // searched for follows the first one in every file, and others are overshot by 12 bytes.
    if (!cursor.Skip(chunk.size)) return;
  }
}

void QueryOneBit(std::FILE* file, DSD_INFO& info) {
  ChunkCursor cursor(file, ByteOrder::kBig);
  constexpr int kMagicBytes = 4;
  std::array<std::uint8_t, 128 - kMagicBytes> header;
  if (!cursor.Read(header.data(), header.size())) return;
  const auto word = [&](int offset) {
    return Load<std::uint32_t>(ByteOrder::kBig, &header[offset - kMagicBytes]);
  };
  info.channels = header[44 - kMagicBytes];
  info.samplingFrequency = word(36);
  info.bitsPerSample = 1;
  // The low word comes first, in reader and writer alike.
  const std::uint64_t file_size = std::uint64_t{word(16)} << 32 | word(12);
  const std::uint64_t data_offset = word(24);
  if (info.channels == 0 || file_size < data_offset) return;
  // Divided first, so the count is exact for 1, 2, 4 and 8 channels only; hosts know these figures.
  info.sampleCount = (8 / info.channels) * (file_size - data_offset);
}

}  // namespace
}  // namespace corvin::formats

extern "C" int DSDInfo(const char* path, DSD_INFO* info) {
  using namespace corvin::formats;
  if (info == nullptr) return -1;
  info->channels = 0;
  info->samplingFrequency = 0;
  info->bitsPerSample = 0;
  info->sampleCount = 0;
  info->compressionName[0] = '\0';
  info->blockSizePerChannel = kDefaultBlockBytes;

  const InputFile file = OpenInputFile(path);
  if (!file) return -1;
  ChunkCursor cursor(file.get(), ByteOrder::kBig);
  ChunkId magic{};
  cursor.Read(magic.data(), magic.size());
  if (const ContainerKind kind = ContainerKindOf(magic); kind != kUnknown) info->format = kind;
  // The rest of the first header, which is not looked at.
  if (magic == MakeChunkId("FRM8")) cursor.Skip(std::min<std::uint64_t>(12, cursor.left()));
  if (magic == MakeChunkId("DSD ")) cursor.Skip(std::min<std::uint64_t>(24, cursor.left()));

  // A file without a known first word is read as the kind that the caller has put into the record,
  // from its fifth byte on: a host can thus query a file whose first word is damaged.
  switch (info->format) {
    case kDsdiff:
      DsdiffQuery(file.get(), *info).Run();
      break;
    case kDsf:
      QueryDsf(file.get(), *info);
      break;
    case kOneBit:
      QueryOneBit(file.get(), *info);
      break;
  }
  return 0;
}

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The tags of a DSD file: the ID3v2 block that a DSF file points to, or the comments and the edited
// master information of a DSDIFF file.

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "corvin.h"
#include "formats/bytes/input_file.h"
#include "formats/chunk_cursor.h"
#include "formats/container.h"

namespace corvin::formats {
namespace {

/// The texts of one DSDIFF file. Every step returns false when the file ends or a size leads out of
/// it; what was read by then stands in the record.
class DsdiffTexts {
 public:
  DsdiffTexts(ChunkCursor& cursor, DSD_TAG& tag) : cursor_(cursor), tag_(tag) {}

  bool ReadChunk() {
    ChunkHeader chunk;
    if (!cursor_.ReadHeader(chunk)) return false;
    if (chunk.id == MakeChunkId("COMT")) return ReadComments(chunk.size);
    if (chunk.id == MakeChunkId("DIIN") && chunk.size != 0) return ReadEditedMaster(chunk.size);
    return cursor_.Skip(chunk.size);
  }

 private:
  /// A text as it stands in the file, as much of it as the field holds. None past the file's end.
  bool ReadText(std::uint64_t bytes, char (&field)[CORVIN_TAG_TEXT_BYTES]) {
    if (bytes > cursor_.left()) return false;
    const auto stored = static_cast<std::size_t>(std::min<std::uint64_t>(bytes, sizeof field));
    std::memset(field, 0, sizeof field);
    return cursor_.Read(field, stored) && cursor_.Skip(bytes - stored);
  }

  bool ReadComments(std::uint64_t size) {
    const std::uint64_t start = cursor_.position();
    std::uint16_t count;
    if (!cursor_.Read(count)) return false;
    for (int i = 0; i < count; ++i) {
      // Year, month, day, hour, minutes; type, reference; length.
      std::uint16_t year;
      std::uint32_t rest_of_date;
      std::uint16_t type;
      std::uint16_t reference;
      std::uint32_t length;
      if (!cursor_.Read(year) || !cursor_.Read(rest_of_date) || !cursor_.Read(type) ||
          !cursor_.Read(reference) || !cursor_.Read(length)) {
        return false;
      }
      tag_.year = year;
      const bool general = type == 0 && reference == 0;
      if (!(general ? ReadText(length, tag_.comment) : cursor_.Skip(length))) return false;
    }
    // Behind an odd text stands a pad byte that its length does not count.
    const std::uint64_t used = cursor_.position() - start;
    if (size > used && size - used <= cursor_.left()) return cursor_.Skip(size - used);
    return true;
  }

  bool ReadEditedMaster(std::uint64_t remaining) {
    while (remaining != 0) {
      ChunkHeader chunk;
      if (!cursor_.ReadHeader(chunk)) return false;
      remaining -= kChunkHeaderBytes;
      if (chunk.id == MakeChunkId("DIAR")) {
        if (!ReadName(tag_.artist)) return false;
      } else if (chunk.id == MakeChunkId("DITI")) {
        if (!ReadName(tag_.title)) return false;
      } else {
        if (!cursor_.Skip(chunk.size)) return false;
        remaining -= chunk.size;
      }
      // The two names' own bytes are not counted, so the walk goes on into the chunks that follow,
      // to the end of the file as a rule. Names that stand outside the chunk are found by that.
    }
    return true;
  }

  /// Only the low half of the length counts: writers have left other things in the high half.
  bool ReadName(char (&field)[CORVIN_TAG_TEXT_BYTES]) {
    std::uint32_t length;
    return cursor_.Read(length) && ReadText(length & 0xffff, field);
  }

  ChunkCursor& cursor_;
  DSD_TAG& tag_;
};

int ReadDsfTag(std::FILE* file, DSD_TAG& tag) {
  ChunkCursor cursor(file, ByteOrder::kLittle);
  std::uint64_t chunk_size;
  std::uint64_t file_size;
  std::uint64_t metadata;
  if (!cursor.Read(chunk_size) || !cursor.Read(file_size) || !cursor.Read(metadata)) return -1;
  if (metadata == 0) return -1;
  // A tag that is not there or cannot be read leaves the record empty.
  if (metadata < cursor.file_size() && fseeko(file, static_cast<off_t>(metadata), SEEK_SET) == 0) {
    Read_id3tag_v2(file, &tag);
  }
  return 0;
}

}  // namespace
}  // namespace corvin::formats

extern "C" int DSDTag(const char* path, DSD_TAG* tag) {
  using namespace corvin::formats;
  if (tag == nullptr) return -1;
  DSDTagClear(tag);
  const InputFile file = OpenInputFile(path);
  if (!file) return -1;
  ChunkCursor cursor(file.get(), ByteOrder::kBig);
  ChunkId magic{};
  if (!cursor.Read(magic.data(), magic.size())) return 0;
  const ContainerKind kind = ContainerKindOf(magic);
  tag->format = kind;
  if (kind == kOneBit) return -1;
  if (kind == kDsf) return ReadDsfTag(file.get(), *tag);
  if (kind == kDsdiff && cursor.Skip(12)) {
    DsdiffTexts texts(cursor, *tag);
    while (texts.ReadChunk()) {
    }
  }
  return 0;
}

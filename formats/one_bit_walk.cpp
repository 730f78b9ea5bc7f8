// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The single-bit container: a header with fixed places, then the sound.

#include <algorithm>
#include <array>
#include <string>

#include "formats/bytes/byte_order.h"
#include "formats/bytes/chunk_id.h"
#include "formats/sound_file.h"
#include "formats/speakers.h"

namespace corvin::formats {

void WalkOneBit(ByteSource& source, SoundFile& file) {
  std::array<std::uint8_t, 128> header;
  if (source.Read(0, header.data(), header.size()) != header.size()) {
    return file.Fail(Readable::kDamaged, "is damaged: its header is cut short");
  }
  const auto word = [&](std::size_t offset) {
    return Load<std::uint32_t>(ByteOrder::kBig, &header[offset]);
  };
  file.rate_hz = word(36);
  file.channels = header[44];
  file.speakers = file.channels <= 2 ? UsualSpeakers(file.channels) : 0;
  // The low word comes first.
  const std::uint64_t stated_end = std::uint64_t{word(16)} << 32 | word(12);
  const std::uint64_t start = word(24);
  const std::uint64_t size = source.Size();
  if (start < header.size() || start > size) {
    return file.Fail(Readable::kDamaged, "is damaged: its sound does not begin within the file");
  }
  std::uint64_t end = stated_end;
  if (stated_end < start && file.sequential) {
    return file.Fail(Readable::kUnsupported, "does not state its end, which a pipe does not tell");
  }
  if (stated_end < start) {
    file.Warn("the header states a file of " + std::to_string(stated_end) +
              " bytes; the file's own end stands in");
    end = size;
  } else if (stated_end < size && !file.sequential) {
    file.Warn(std::to_string(size - stated_end) + " bytes at the end do not belong to the sound");
  }
  file.sound = {start, std::min(end, size) - start};
  file.chunks = {{.id = MakeChunkId("1bit"), .content = {0, start}, .stated_bytes = start},
                 {.id = MakeChunkId("data"),
                  .header_offset = start,
                  .content = file.sound,
                  .stated_bytes = end - start}};
  SettleInterleaved(file, end - start);
}

}  // namespace corvin::formats

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/convert/neighbours.h"

#include <algorithm>

#include "formats/bytes/bit_order.h"

namespace corvin::studio {
namespace {

// The last `wanted` samples before byte `byte` of a file, in their order.
std::vector<SoundPart> parts_before(formats::SoundReader& file, std::uint64_t byte,
                                    const Sounds& previous, std::uint64_t wanted) {
  std::vector<SoundPart> parts;
  const auto take = [&](formats::SoundReader* reader, std::uint64_t end) {
    const std::uint64_t samples = std::min(wanted, end);
    if (samples > 0) parts.push_back({reader, end - samples, end});
    wanted -= samples;
  };
  take(&file, 8 * byte);
  for (formats::SoundReader* one : previous) take(one, one->file().samples);
  take(nullptr, wanted);
  std::reverse(parts.begin(), parts.end());
  return parts;
}

}  // namespace

int seek_with_preroll(Decoder& decoder, formats::SoundReader& file, const Sounds& previous,
                      std::uint64_t sample) {
  if (const int status = decoder.seek(sample); status != CORVIN_OK) return status;
  const std::uint64_t first = decoder.settings().first_sample;
  const std::uint64_t byte = (sample - first) / 8;
  JoinedSound sound(parts_before(file, byte, previous, 8 * decoder.preroll(sample)),
                    file.channels(), first, decoder.settings().bit_order == CORVIN_LSB_FIRST);
  while (const std::size_t bytes = sound.next()) {
    // All of it is taken: nothing comes out before what follows it.
    std::size_t taken = 0;
    decoder.push_planar(sound.places(), bytes, taken);
  }
  if (sound.failed()) return CORVIN_E_READ;
  file.Seek(byte);
  return CORVIN_OK;
}

std::vector<SoundPart> rest_and_next(const Decoder& decoder, formats::SoundReader& file,
                                     std::uint64_t from, std::uint64_t end, const Sounds& next) {
  std::vector<SoundPart> parts = {{&file, 8 * from, end}};
  // What the last byte lacks, and the bytes behind it.
  std::uint64_t wanted = 8 * (formats::BytesOf(end) + decoder.preroll()) - end;
  const auto take = [&](formats::SoundReader* reader, std::uint64_t first) {
    const std::uint64_t taken = std::min(wanted, reader->file().samples - first);
    parts.push_back({reader, first, first + taken});
    wanted -= taken;
  };
  take(&file, end);
  for (formats::SoundReader* one : next) take(one, 0);
  return parts;
}

}  // namespace corvin::studio

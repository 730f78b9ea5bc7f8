// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/convert/copy.h"

#include <algorithm>

#include "studio/convert/channel_bytes.h"

namespace corvin::studio {

int copy(formats::SoundReader& source, const formats::SoundFile& file, formats::SoundWriter& target,
         const corvin_convert_settings& settings) {
  constexpr std::size_t kBytes = 1 << 16;  // of each channel at a time
  ChannelBytes buffer(file.channels, kBytes);
  source.Seek(0);
  for (;;) {
    // In the order of the source, so that no byte is turned around twice.
    const std::size_t count = source.Read(buffer.places(), 1, kBytes, file.lsb_first);
    if (source.failed()) return CORVIN_E_READ;
    if (count == 0) return CORVIN_OK;
    if (!target.Write(buffer.places(), 1, count, file.lsb_first)) return CORVIN_E_WRITE;
    const std::uint64_t done = std::min(source.position() * 8, file.samples);
    if (settings.progress != nullptr &&
        settings.progress(settings.progress_user, done, file.samples) != 0) {
      return CORVIN_E_CANCELLED;
    }
  }
}

}  // namespace corvin::studio

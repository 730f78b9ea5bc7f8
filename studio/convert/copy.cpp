// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/convert/copy.h"

#include <algorithm>

#include "studio/convert/channel_bytes.h"
#include "studio/convert/joined_sound.h"

namespace corvin::studio {
namespace {

// Writes what next(places) makes, that many bytes of each channel, until that is nothing;
// done() tells of how many samples.
template <typename Next, typename Done>
int copy_all(formats::SoundWriter& target, const Stretch& stretch,
             const corvin_convert_settings& settings, bool lsb_first, std::uint8_t* const* places,
             Next next, Done done) {
  while (const std::size_t count = next()) {
    if (!target.Write(places, 1, count, lsb_first)) return CORVIN_E_WRITE;
    if (settings.progress != nullptr &&
        settings.progress(settings.progress_user, done(), stretch.samples()) != 0) {
      return CORVIN_E_CANCELLED;
    }
  }
  return CORVIN_OK;
}

}  // namespace

int copy(formats::SoundReader& source, const Stretch& stretch, formats::SoundWriter& target,
         const corvin_convert_settings& settings, std::uint64_t& samples) {
  // In the order of the source, so that no byte is turned around twice.
  const bool lsb_first = source.file().lsb_first;
  if (stretch.begin % 8 != 0) {
    JoinedSound sound({{&source, stretch.begin, stretch.end}}, source.channels(), 0, lsb_first);
    const int status = copy_all(
        target, stretch, settings, lsb_first, sound.places(), [&] { return sound.next(); },
        [&] { return sound.samples(); });
    samples = sound.samples();
    return status == CORVIN_OK && sound.failed() ? CORVIN_E_READ : status;
  }
  constexpr std::size_t kBytes = 1 << 16;  // of each channel at a time
  ChannelBytes buffer(source.channels(), kBytes);
  source.Seek(stretch.begin / 8);
  const auto next = [&] {
    const std::uint64_t left = formats::BytesOf(stretch.end) - source.position();
    return source.Read(buffer.places(), 1,
                       static_cast<std::size_t>(std::min<std::uint64_t>(kBytes, left)), lsb_first);
  };
  const auto done = [&] { return stretch.samples_before(source.position() * 8); };
  const int status = copy_all(target, stretch, settings, lsb_first, buffer.places(), next, done);
  samples = done();
  return status == CORVIN_OK && source.failed() ? CORVIN_E_READ : status;
}

}  // namespace corvin::studio

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Whole conversions to DSD: of PCM from sources, track by track, and of a file's DSD of another
// rate, which takes the way through PCM.

#ifndef CORVIN_STUDIO_CONVERT_TO_DSD_H_
#define CORVIN_STUDIO_CONVERT_TO_DSD_H_

#include <span>

#include "corvin.h"
#include "formats/sound_reader.h"
#include "formats/sound_writer.h"
#include "studio/convert/stretch.h"
#include "studio/convert/track_cuts.h"

namespace corvin::studio {

/// As corvin_convert_to_dsd_tracks(), whose arguments are complete and checked here, with `finish`
/// for the writers; `report` is filled as far as it goes. Throws std::bad_alloc and
/// std::system_error.
int convert_to_dsd(std::span<const corvin_pcm_source> sources,
                   std::span<formats::SoundWriter* const> targets, TrackCuts::Finish finish,
                   const corvin_convert_settings& settings, corvin_convert_report& report);

/// As corvin_convert_dsd_rate(), in the same way, of `stretch` and the reader's channels, up to the
/// last byte.
int convert_dsd_rate(formats::SoundReader& source, const Stretch& stretch,
                     formats::SoundWriter& target, const corvin_convert_settings& settings,
                     corvin_convert_report& report);

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_CONVERT_TO_DSD_H_

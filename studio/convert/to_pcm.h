// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A file's sound, or a stretch of it, through a decoder to a sink, be the file a whole or a part of
// one.

#ifndef CORVIN_STUDIO_CONVERT_TO_PCM_H_
#define CORVIN_STUDIO_CONVERT_TO_PCM_H_

#include "corvin.h"
#include "formats/sound_reader.h"
#include "studio/convert/neighbours.h"
#include "studio/convert/stretch.h"

namespace corvin::studio {

/// As corvin_convert_to_pcm(), whose settings and sink are complete here; the settings' neighbours
/// are `neighbours`, its part of the source is `stretch`, and the channels are those that the reader
/// has selected. `report` is filled as far as it goes. Throws std::bad_alloc and std::system_error.
int convert_to_pcm(formats::SoundReader& source, const Neighbours& neighbours,
                   const Stretch& stretch, const corvin_convert_settings& settings,
                   const corvin_pcm_sink& sink, corvin_convert_report& report);

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_CONVERT_TO_PCM_H_

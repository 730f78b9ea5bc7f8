// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A file's sound, or a stretch of it, to another container, bit by bit.

#ifndef CORVIN_STUDIO_CONVERT_COPY_H_
#define CORVIN_STUDIO_CONVERT_COPY_H_

#include <cstdint>

#include "corvin.h"
#include "formats/sound_reader.h"
#include "formats/sound_writer.h"
#include "studio/convert/stretch.h"

namespace corvin::studio {

/// As corvin_convert_copy(), whose arguments are complete here, of `stretch` and the reader's
/// channels, up to the last byte. `samples` receives how many were copied. Throws std::bad_alloc.
int copy(formats::SoundReader& source, const Stretch& stretch, formats::SoundWriter& target,
         const corvin_convert_settings& settings, std::uint64_t& samples);

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_CONVERT_COPY_H_

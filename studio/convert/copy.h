// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A file's sound to another container, bit by bit.

#ifndef CORVIN_STUDIO_CONVERT_COPY_H_
#define CORVIN_STUDIO_CONVERT_COPY_H_

#include "corvin.h"
#include "formats/sound_reader.h"
#include "formats/sound_writer.h"

namespace corvin::studio {

/// As corvin_convert_copy(), whose arguments are complete here, up to the last byte. Throws
/// std::bad_alloc.
int copy(formats::SoundReader& source, const formats::SoundFile& file, formats::SoundWriter& target,
         const corvin_convert_settings& settings);

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_CONVERT_COPY_H_

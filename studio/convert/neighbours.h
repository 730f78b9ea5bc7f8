// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What stands around a file's sound in a whole such as an album, for a decoder to hear along with
// it. A neighbour may be shorter than what the decoder asks for: then those behind it are heard
// too. What all of them lack is silence.

#ifndef CORVIN_STUDIO_CONVERT_NEIGHBOURS_H_
#define CORVIN_STUDIO_CONVERT_NEIGHBOURS_H_

#include <cstdint>
#include <vector>

#include "formats/sound_reader.h"
#include "studio/convert/joined_sound.h"
#include "studio/decode/decoder.h"

namespace corvin::studio {

/// Files of one rate and number of channels.
using Sounds = std::vector<formats::SoundReader*>;

/// On either side of a file the nearest ones first.
struct Neighbours {
  Sounds previous;
  Sounds next;
};

/// Moves a decoder of the file's sound to a sample of the whole, the file to the byte that holds
/// it, and feeds the decoder all that is to come before that byte.
/// @return  a corvin_status: as Decoder::seek(), before anything has moved; CORVIN_E_READ, after
///          which both stand anywhere
/// Throws std::bad_alloc.
int seek_with_preroll(Decoder& decoder, formats::SoundReader& file, const Sounds& previous,
                      std::uint64_t sample);

/// What a decoder of the file's sound up to sample `end` takes from byte `from` of it on: the rest,
/// and as much behind it as is of use.
std::vector<SoundPart> rest_and_next(const Decoder& decoder, formats::SoundReader& file,
                                     std::uint64_t from, std::uint64_t end, const Sounds& next);

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_CONVERT_NEIGHBOURS_H_

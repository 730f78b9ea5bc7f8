// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What is behind the handles of files, for the functions that take two kinds of handle.

#ifndef CORVIN_STUDIO_C_API_FILE_H_
#define CORVIN_STUDIO_C_API_FILE_H_

#include <cstdint>
#include <memory>
#include <optional>

#include "corvin.h"
#include "formats/bytes/byte_source.h"
#include "formats/bytes/new_file.h"
#include "formats/container_tags.h"
#include "formats/sound_file.h"
#include "formats/sound_reader.h"
#include "formats/sound_writer.h"
#include "studio/convert/neighbours.h"

struct corvin_file {
  std::unique_ptr<corvin::formats::ByteSource> source;
  corvin::formats::SoundFile sound;
  std::optional<corvin::formats::SoundReader> reader;  // when there is sound to read
  bool begun = false;                                  // sound was read
};

struct corvin_writer {
  std::unique_ptr<corvin::formats::ByteSink> sink;
  corvin::formats::NewFile* new_file = nullptr;  // the sink, when it is one
  corvin_writer_settings settings;
  std::optional<corvin::formats::SoundWriter> sound;
  corvin::formats::ContainerTags tags;
  bool failed = false;
  bool finished = false;
};

namespace corvin::studio {

/// CORVIN_OK when the sound can be read.
int status_of(formats::Readable readable);

/// CORVIN_OK when a conversion can begin: CORVIN_E_STATE for sound that comes once and has come. From
/// here on it has.
int begin_sound(corvin_file& file);

/// A host's list of files, which go together with `file`. CORVIN_E_ARGUMENT when they do not, or
/// the status of one that cannot be read. Throws std::bad_alloc.
int adopt_sounds(corvin_file* const* files, std::size_t count, const formats::SoundFile& file,
                 Sounds& sounds);

/// Whether there is so much sound before a whole's sample `first_sample`.
bool fits_before(const Sounds& previous, std::uint64_t first_sample);

/// Completes the file of a writer that can be finished, as formats::SoundWriter does. CORVIN_E_STATE,
/// and nothing is done, when it was to have another number of samples.
int finish(corvin_writer& writer, std::uint64_t samples, bool goes_on);

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_C_API_FILE_H_

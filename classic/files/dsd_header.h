// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Writes the headers of the three containers as the classic engine lays them out, with the stereo
// figures that it states for every channel count. Sound data is written by others.

#ifndef CORVIN_CLASSIC_FILES_DSD_HEADER_H_
#define CORVIN_CLASSIC_FILES_DSD_HEADER_H_

#include <cstdint>
#include <cstdio>

#include "formats/container.h"

namespace corvin::formats {

struct DsdHeader {
  std::uint32_t channels;
  std::uint32_t dsd_rate_hz;
  std::uint32_t pcm_rate_hz;
  std::uint64_t pcm_frames;
};

/// Bytes of sound per channel.
std::uint64_t SoundBytes(const DsdHeader& header);

/// Writes the header at the stream's position, the start of the file. False when a field could not
/// be written, after a message on the standard error stream for each.
bool WriteDsdHeader(std::FILE* file, ContainerKind kind, const DsdHeader& header);

/// Writes the size of a DSF file, and the offset of its tag unless that is 0, into the header.
bool FinishDsf(std::FILE* file, std::uint64_t file_bytes, std::uint64_t tag_offset);

}  // namespace corvin::formats

#endif  // CORVIN_CLASSIC_FILES_DSD_HEADER_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A DSD file as the commands see it: what its headers declare, checked for what no command could
// work with, and the words for it.

#ifndef CORVIN_CLI_CLASSIC_DSD_SOURCE_H_
#define CORVIN_CLI_CLASSIC_DSD_SOURCE_H_

#include <cstdint>
#include <optional>
#include <string>

#include "cli/words/exit_code.h"
#include "corvin.h"

namespace corvin::cli {

struct DsdSource {
  DSD_INFO info{};
  uint64_t file_bytes = 0;
  bool is_of_unknown_kind = false;  // readable, but no DSD file

  /** Bytes of sound of all channels that the headers declare, without the padding of the last
   *  block; UINT64_MAX when they declare more than that. */
  uint64_t sound_bytes() const;

  /** Whether the file is too small for the sound it declares. */
  bool is_cut_short() const { return sound_bytes() > file_bytes; }
};

/** Reads the headers of the file at `path` into `source`; returns what is wrong with it. */
std::optional<Failure> read_source(const std::string& path, DsdSource& source);

/** "DSDIFF", "DSF" or "1bit" for the container kinds 1..3. */
const char* kind_name(uint32_t kind);

/** "DSD64 (2822400 Hz)", with the multiple counted from 44100 Hz or 48000 Hz; the bare rate when it
 *  is no power of two from 64 up of either. */
std::string rate_name(uint32_t rate_hz);

/** Whether the rate is a multiple of 48000 Hz rather than of 44100 Hz. */
bool is_48k_family(uint32_t rate_hz);

/** "1:02:03.456", rounded down. */
std::string duration_text(uint64_t samples, uint32_t rate_hz);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CLASSIC_DSD_SOURCE_H_

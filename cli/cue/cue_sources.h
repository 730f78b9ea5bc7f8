// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Where the cue sheet of a sound file is, and which file it is of those that a sheet names.

#ifndef CORVIN_CLI_CUE_CUE_SOURCES_H_
#define CORVIN_CLI_CUE_CUE_SOURCES_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "cli/cue/cue_sheet.h"
#include "corvin.hpp"

namespace corvin::cli {

/** A sheet and the name that messages call it by. */
struct NamedCue {
  CueSheet sheet;
  std::string name;
};

/** The sheet of the sound file at `path`: the file of its stem or name and ".cue" beside it; else that
 *  in its tags; else that of a FLAC block. No value: there is none. Throws Failure for one that cannot
 *  be read.
 *  @param rate_hz  of the sound */
std::optional<NamedCue> find_cue(const std::string& path, const TagSet& tags, uint32_t rate_hz);

/** Which of the sheet's files the sound file at `path` is: the one of its name; else of its stem, as
 *  sheets outlive conversions; else the only one. Throws Failure when none is. */
size_t file_in_cue(const NamedCue& cue, const std::string& path);

/** The path of a file that the sheet at `cue_path` names: in the sheet's directory, by that name or by
 *  its stem and the ending of another kind. Throws Failure when there is none. */
std::string path_of_cue_file(const NamedCue& cue, size_t file, const std::string& cue_path);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CUE_CUE_SOURCES_H_

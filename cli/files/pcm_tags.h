// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The tags of a PCM file, as the record that the library writes into a DSF file.

#ifndef CORVIN_CLI_FILES_PCM_TAGS_H_
#define CORVIN_CLI_FILES_PCM_TAGS_H_

#include <string>

#include "cli/files/pcm_source.h"
#include "corvin.h"

namespace corvin::cli {

/** A record that releases its pictures. */
struct Tags : DSD_TAG {
  Tags() : DSD_TAG{} {}
  ~Tags() { DSDTagClear(this); }
  Tags(const Tags&) = delete;
  Tags& operator=(const Tags&) = delete;
};

/** Fills an empty record with the texts and the front cover (without one, the first picture) found
 *  in the file at `path`, which `source` has open. Texts longer than their fields are cut after a
 *  character. */
void read_pcm_tags(const std::string& path, const PcmSource& source, DSD_TAG& tags);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_PCM_TAGS_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What the headers of a sound file of any kind tell, and what is odd about them.

#ifndef CORVIN_CLI_FILES_FILE_FACTS_H_
#define CORVIN_CLI_FILES_FILE_FACTS_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "corvin.hpp"

namespace corvin::cli {

struct FileFacts {
  bool is_dsd = false;
  std::string kind;  // "DSF", "FLAC"
  uint32_t rate_hz = 0;
  uint32_t channels = 0;
  uint32_t speakers = 0;                   // mask; 0: not known
  std::optional<uint64_t> samples;         // per channel, that are there; of PCM frames
  std::optional<TagSet> tags;              // when the file has any
  std::vector<std::string> warnings = {};  // what is damaged, a sentence without subject each
  std::string problem = {};                // why the sound cannot be read; empty when it can

  // Of PCM.
  uint32_t bits = 0;  // of a sample; 0: packed with loss
  bool is_float = false;

  // Of DSD.
  std::string compression = {};  // what DSDIFF calls it
  uint64_t stated_samples = 0;
  uint64_t sound_bytes = 0;    // that hold samples
  uint64_t padding_bytes = 0;  // behind them
  uint32_t block_bytes = 1;
  bool is_lsb_first = false;
  std::vector<corvin_file_chunk> chunks = {};
};

/** Throws Failure for a file that is no sound file or states neither rate nor channels. */
FileFacts read_file_facts(const std::string& path);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_FILE_FACTS_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The ways that corvin convert can go with the studio engine, each with what it is asked for. The
// options are understood by then: what a request says is possible as far as the command line goes.

#ifndef CORVIN_CLI_CONVERT_WAYS_H_
#define CORVIN_CLI_CONVERT_WAYS_H_

#include <cstdint>

#include "cli/files/dsd_input.h"
#include "cli/files/output_file.h"
#include "cli/files/pcm_input.h"
#include "cli/files/pcm_kind.h"
#include "corvin.hpp"

namespace corvin::cli {

struct WavRequest {
  OutputFile::Config output;
  PcmKind kind = PcmKind::kWav;
  ConvertSettings settings;  // without threads and progress
};

struct DsdRequest {
  OutputFile::Config output;
  corvin_container container = CORVIN_DSF;
  uint32_t dsd_rate_hz = 0;
  ConvertSettings settings;    // without threads and progress
  bool changes_level = false;  // even by 0 dB; else DSD of the same rate is copied bit for bit
};

/** Converts a DSD file to WAV. Throws Failure, as the others do. */
void convert_dsd_to_wav(const WavRequest& request, DsdInput& input);

/** Converts a PCM file to DSD. */
void convert_pcm_to_dsd(const DsdRequest& request, PcmInput& input);

/** Converts a DSD file to another rate or level, or copies its sound to another container. */
void convert_dsd_to_dsd(const DsdRequest& request, DsdInput& input);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CONVERT_WAYS_H_

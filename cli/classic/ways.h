// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The ways that corvin convert can go with the classic engine, each with what it is asked for.

#ifndef CORVIN_CLI_CLASSIC_WAYS_H_
#define CORVIN_CLI_CLASSIC_WAYS_H_

#include <cstdint>

#include "cli/classic/dsd_headers.h"
#include "cli/files/output_file.h"
#include "cli/files/pcm_input.h"
#include "cli/files/pcm_kind.h"
#include "corvin.h"

namespace corvin::cli {

struct ClassicWavRequest {
  OutputFile::Config output;
  PcmKind kind = PcmKind::kWav;
  uint32_t rate_hz = 0;                      // up to the DSD file's own
  corvin_sample_format format = CORVIN_S24;  // of integers
};

struct ClassicDsdRequest {
  OutputFile::Config output;
  corvin_container container = CORVIN_DSF;
  uint32_t dsd_rate_hz = 0;
};

/** Converts a DSD file's first two channels to WAV. Throws Failure, as the other does. */
void convert_dsd_to_wav_classic(const ClassicWavRequest& request, const DsdHeaders& input);

/** Converts a PCM file to DSD. `input` has nothing read of it and is not to be used afterwards. */
void convert_pcm_to_dsd_classic(const ClassicDsdRequest& request, PcmInput& input);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CLASSIC_WAYS_H_

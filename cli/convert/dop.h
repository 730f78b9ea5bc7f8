// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The two ways of corvin dop: DSD files into PCM files that carry their bits, and back.
//
// Both throw Failure; what is damaged in an input of which the rest has been written is noted.

#ifndef CORVIN_CLI_CONVERT_DOP_H_
#define CORVIN_CLI_CONVERT_DOP_H_

#include "cli/convert/ways.h"
#include "cli/files/dsd_input.h"
#include "cli/files/output_file.h"
#include "cli/files/pcm_input.h"
#include "cli/files/pcm_kind.h"

namespace corvin::cli {

/** Writes the sound of a DSD file into a PCM file of a 16th of its rate. */
void dop_encode(const OutputFile::Config& output, PcmKind kind, const Care& care, DsdInput& input);

/** Writes the DSD that a PCM file carries into a DSD file. */
void dop_decode(const OutputFile::Config& output, corvin_container container, const Care& care,
                PcmInput& input);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CONVERT_DOP_H_

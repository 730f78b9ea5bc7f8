// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The ways that corvin convert can go with the studio engine, each with what it is asked for. The
// options are understood by then: what a request says is possible as far as the command line goes.
//
// All throw Failure; what is damaged in an input of which the rest has been converted is noted.

#ifndef CORVIN_CLI_CONVERT_WAYS_H_
#define CORVIN_CLI_CONVERT_WAYS_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/convert/pcm_feed.h"
#include "cli/files/dsd_input.h"
#include "cli/files/output_file.h"
#include "cli/files/pcm_input.h"
#include "cli/files/pcm_kind.h"
#include "cli/words/failure.h"
#include "corvin.hpp"

namespace corvin::cli {

/** How careful to be. */
struct Care {
  bool verify = false;  // read the output back and compare
  bool strict = false;  // a damaged input is a failure
};

struct PcmRequest {
  OutputFile::Config output;
  PcmKind kind = PcmKind::kFlac;
  uint32_t rate_hz = 44100;
  ConvertSettings settings;  // without progress and files; its rate is the engine's
  std::vector<std::string> previous = {},
                           next = {};  // the files around this one, the nearest first
  Care care = {};
};

struct DsdRequest {
  OutputFile::Config output;
  corvin_container container = CORVIN_DSF;
  uint32_t dsd_rate_hz = 0;
  ConvertSettings settings;    // without progress
  PcmFeed::Config feed = {};   // of a PCM input
  bool changes_sound = false;  // by level or band; else DSD of the same rate is copied bit for bit
  Care care = {};
};

/** What has become of an input, beside the new file. */
struct Converted {
  double seconds = 0;               // of sound, in the output
  std::optional<double> peak = {};  // where it was looked at; 1.0 is full scale
  uint64_t clips = 0;               // samples that were limited to full scale
};

/** Converts a DSD file to PCM. */
Converted convert_dsd_to_pcm(const PcmRequest& request, DsdInput& input);

/** Converts PCM files, which follow each other without a joint, to a DSD file each. Of `inputs`,
 *  `requests` and what is returned there are equally many; the peak is that of all. */
std::vector<Converted> convert_pcm_to_dsd(const std::vector<DsdRequest>& requests,
                                          std::vector<PcmInput>& inputs);

/** Converts a DSD file to another rate or level, or copies its sound to another container. */
Converted convert_dsd_to_dsd(const DsdRequest& request, DsdInput& input);

/** The true peak that the PCM of a request would have without its gain; 1.0 is full scale. */
double true_peak_of(const PcmRequest& request, DsdInput& input);

/** The true peak of what is read of a PCM file. */
double true_peak_of(PcmInput& input, const PcmFeed::Config& config);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CONVERT_WAYS_H_

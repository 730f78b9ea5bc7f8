// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What the options of corvin convert come to for one input, way by way. All throw a Failure for
// options that the way has no use for, and for what cannot be done to this input.

#ifndef CORVIN_CLI_COMMANDS_CONVERT_REQUESTS_H_
#define CORVIN_CLI_COMMANDS_CONVERT_REQUESTS_H_

#include <cstdint>

#include "cli/classic/ways.h"
#include "cli/commands/convert_options.h"
#include "cli/commands/convert_plan.h"
#include "cli/convert/ways.h"

namespace corvin::cli {

/** Of PCM, in and out. */
inline constexpr uint32_t kMinPcmRateHz = 8000, kMaxPcmRateHz = 768000;

/** Sets the band that is asked for; the filters can be closed from `highest_hz` on at most. */
void set_band(ConvertSettings& settings, const std::optional<Band>& band, double highest_hz);

/** What several conversions share. */
struct Share {
  uint32_t threads = 0;  // for each
  double gain_db = 0;    // that --gain auto has found
};

PcmRequest pcm_request(const ConvertOptions& options, const PlannedConversion& planned,
                       const DsdInput& input, const Share& share);
/** What shows the peak of a conversion of either kind to come. */
PcmRequest peak_request(const ConvertOptions& options, const PlannedConversion& planned,
                        const DsdInput& input, const Share& share);
DsdRequest dsd_request(const ConvertOptions& options, const PlannedConversion& planned,
                       const DsdInput& input, const Share& share);
/** What is read of a PCM file. */
PcmFeed::Config feed_config(const ConvertOptions& options, const PcmInput& input);
DsdRequest dsd_request(const ConvertOptions& options, const PlannedConversion& planned,
                       const PcmInput& input, const Share& share);

ClassicWavRequest classic_wav_request(const ConvertOptions& options,
                                      const PlannedConversion& planned, const DsdHeaders& input);
ClassicDsdRequest classic_dsd_request(const ConvertOptions& options,
                                      const PlannedConversion& planned, const PcmInput& input);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_COMMANDS_CONVERT_REQUESTS_H_

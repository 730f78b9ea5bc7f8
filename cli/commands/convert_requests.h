// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// From the options of corvin convert to what each way is asked for. An option that the way has no
// use for, or cannot follow, throws a Failure of usage.

#ifndef CORVIN_CLI_COMMANDS_CONVERT_REQUESTS_H_
#define CORVIN_CLI_COMMANDS_CONVERT_REQUESTS_H_

#include "cli/classic/ways.h"
#include "cli/commands/convert_options.h"
#include "cli/convert/ways.h"

namespace corvin::cli {

WavRequest wav_request(const ConvertOptions& options, const DsdInput& input);
DsdRequest dsd_request(const ConvertOptions& options, const DsdInput& input);
DsdRequest dsd_request(const ConvertOptions& options, const PcmInput& input);

ClassicWavRequest classic_wav_request(const ConvertOptions& options, const DsdHeaders& input);
ClassicDsdRequest classic_dsd_request(const ConvertOptions& options, const PcmInput& input);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_COMMANDS_CONVERT_REQUESTS_H_

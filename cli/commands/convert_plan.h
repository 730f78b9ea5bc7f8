// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Which conversions the inputs of corvin convert come to, before the first one begins: what each
// makes, under which name, and which inputs are one recording.

#ifndef CORVIN_CLI_COMMANDS_CONVERT_PLAN_H_
#define CORVIN_CLI_COMMANDS_CONVERT_PLAN_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/batch/inputs.h"
#include "cli/batch/piped_input.h"
#include "cli/commands/convert_options.h"
#include "cli/files/file_identities.h"
#include "cli/files/output_kind.h"
#include "cli/words/failure.h"

namespace corvin::cli {

struct PlannedConversion {
  Input input;
  bool is_dsd = false;  // the input
  uint32_t rate_hz = 0;
  uint32_t channels = 0;
  uint64_t samples = 0;  // of a DSD input, per channel

  std::shared_ptr<const UnnamedFile> content;  // of an input that is a pipe

  OutputKind kind = PcmKind::kFlac;
  std::string output;
  std::shared_ptr<const FileIdentities> all_inputs;  // of the command; no output replaces one
  bool goes_on = false;    // the next conversion's input follows this one's in the same recording
  bool is_joined = false;  // to the one before or behind it
  std::optional<Failure> failure;  // why it cannot begin
  std::string skipped;             // why it need not; empty for what is to be done
  bool replaces = false;           // the output, which an earlier run left when it was killed
};

/** The name of those that share the gain of `planned`. */
std::string gain_group_of(const ConvertOptions& options, const PlannedConversion& planned);

/** Looks at all inputs, and leaves those to the options' shard. Throws Failure when the options do not fit them as a whole. */
std::vector<PlannedConversion> plan_conversions(const ConvertOptions& options);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_COMMANDS_CONVERT_PLAN_H_

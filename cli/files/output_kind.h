// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The kinds of files that the tool writes, DSD and PCM together.

#ifndef CORVIN_CLI_FILES_OUTPUT_KIND_H_
#define CORVIN_CLI_FILES_OUTPUT_KIND_H_

#include <optional>
#include <string>
#include <variant>

#include "cli/files/pcm_kind.h"
#include "corvin.h"

namespace corvin::cli {

using OutputKind = std::variant<PcmKind, corvin_container>;

inline bool is_dsd(const OutputKind& kind) {
  return std::holds_alternative<corvin_container>(kind);
}

/** The kind that the ending of a file's name stands for; no value: of none. */
std::optional<OutputKind> output_kind_of(const std::string& path);

/** The kind of that name, in letters of either case: an ending without its point. */
std::optional<OutputKind> output_kind_named(const std::string& name);

/** ".flac": what names of new files of the kind end in. */
const char* ending_of(const OutputKind& kind);

/** What the ending of a file's name says of an input. */
enum class InputEnding { kOther, kDsd, kPcm };
InputEnding input_ending_of(const std::string& path);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_OUTPUT_KIND_H_

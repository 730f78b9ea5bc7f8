// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What corvin tags does beside showing: set, remove, copy, export, import.

#ifndef CORVIN_CLI_COMMANDS_TAGS_EDITS_H_
#define CORVIN_CLI_COMMANDS_TAGS_EDITS_H_

#include "cli/commands/commands.h"

namespace corvin::cli {

/** Adds them to corvin tags. */
AddCommand add_tags_edits;

}  // namespace corvin::cli

#endif  // CORVIN_CLI_COMMANDS_TAGS_EDITS_H_

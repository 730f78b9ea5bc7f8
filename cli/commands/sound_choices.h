// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The names by which options choose from what the engine has.

#ifndef CORVIN_CLI_COMMANDS_SOUND_CHOICES_H_
#define CORVIN_CLI_COMMANDS_SOUND_CHOICES_H_

#include "cli/commands/choice_option.h"
#include "corvin.h"

namespace corvin::cli {

inline constexpr Choice<corvin_phase> kPhases[] = {
    {"linear", CORVIN_LINEAR_PHASE},
    {"minimum", CORVIN_MINIMUM_PHASE},
};

inline constexpr Choice<corvin_modulator> kModulators[] = {
    {"standard", CORVIN_MODULATOR_STANDARD},
    {"high", CORVIN_MODULATOR_HIGH},
    {"best", CORVIN_MODULATOR_BEST},
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_COMMANDS_SOUND_CHOICES_H_

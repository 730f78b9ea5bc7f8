// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What an encoder's settings are unless they are set, and what they may be.

#ifndef CORVIN_STUDIO_ENCODE_ENCODER_SETTINGS_H_
#define CORVIN_STUDIO_ENCODE_ENCODER_SETTINGS_H_

#include "corvin.h"

namespace corvin::studio {

corvin_encoder_settings default_encoder_settings();

/// Whether each setting is within its range; the plan decides on the rates.
bool in_range(const corvin_encoder_settings& settings);

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_ENCODE_ENCODER_SETTINGS_H_

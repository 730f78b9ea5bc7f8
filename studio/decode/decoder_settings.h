// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What a decoder's settings are unless they are set, and what they may be.

#ifndef CORVIN_STUDIO_DECODE_DECODER_SETTINGS_H_
#define CORVIN_STUDIO_DECODE_DECODER_SETTINGS_H_

#include "corvin.h"

namespace corvin::studio {

corvin_decoder_settings default_decoder_settings();

/// Whether each setting is within its range; the plan decides on the rates.
bool in_range(const corvin_decoder_settings& settings);

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_DECODE_DECODER_SETTINGS_H_

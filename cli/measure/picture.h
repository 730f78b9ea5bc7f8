// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A measurement as a picture.

#ifndef CORVIN_CLI_MEASURE_PICTURE_H_
#define CORVIN_CLI_MEASURE_PICTURE_H_

#include <string>

#include "cli/measure/sound_meter.h"
#include "cli/plot/sound_picture.h"

namespace corvin::cli {

/** @param title  the file's name */
SoundPicture picture_of(const Measurement& measured, const std::string& title);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_MEASURE_PICTURE_H_

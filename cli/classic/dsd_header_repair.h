// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The library writes the headers of mono and multichannel files with a stereo file's figures, which
// hosts compare byte by byte. Players go by the figures, so the tool sets them right.

#ifndef CORVIN_CLI_CLASSIC_DSD_HEADER_REPAIR_H_
#define CORVIN_CLI_CLASSIC_DSD_HEADER_REPAIR_H_

#include <cstdint>

#include "corvin.h"

namespace corvin::cli {

/** Writes channel counts and sizes into a complete file of the library.
 *  @param descriptor  open for writing
 *  @return            false: writing failed, errno tells why */
bool repair_header(int descriptor, corvin_container container, uint32_t channels);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CLASSIC_DSD_HEADER_REPAIR_H_

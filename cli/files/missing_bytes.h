// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Files that end before the sound that their headers state. libsndfile does not tell: it makes do
// with the frames that are there.

#ifndef CORVIN_CLI_FILES_MISSING_BYTES_H_
#define CORVIN_CLI_FILES_MISSING_BYTES_H_

#include <cstdint>
#include <string>

namespace corvin::cli {

/** How many bytes of sound the WAV, RF64, W64, AIFF, CAF or AU file at `path` lacks; 0 for a whole
 *  one, one that leaves its length open, and every other kind. */
uint64_t missing_bytes(const std::string& path);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_MISSING_BYTES_H_

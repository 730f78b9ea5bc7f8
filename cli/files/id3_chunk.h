// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The ID3v2 block that WAV, RF64 and AIFF files have in a chunk of its own, as it stands: the tag
// library would hand out what it understands of it.

#ifndef CORVIN_CLI_FILES_ID3_CHUNK_H_
#define CORVIN_CLI_FILES_ID3_CHUNK_H_

#include <cstddef>
#include <string>
#include <vector>

namespace corvin::cli {

/** The block of the file at `path`; empty when it has none or is of another kind. */
std::vector<std::byte> id3_chunk(const std::string& path);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_ID3_CHUNK_H_

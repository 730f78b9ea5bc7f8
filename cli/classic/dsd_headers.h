// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A DSD file as the classic engine sees it: what its headers declare, checked for what no command
// could work with.

#ifndef CORVIN_CLI_CLASSIC_DSD_HEADERS_H_
#define CORVIN_CLI_CLASSIC_DSD_HEADERS_H_

#include <cstdint>
#include <optional>
#include <string>

#include "corvin.h"

namespace corvin::cli {

struct DsdHeaders {
  std::string path;
  DSD_INFO info{};
  uint64_t file_bytes = 0;

  /** Bytes of sound of all channels that the headers declare, without the padding of the last
   *  block; UINT64_MAX when they declare more than that. */
  uint64_t sound_bytes() const;

  /** Whether the file is too small for the sound it declares. */
  bool is_cut_short() const { return sound_bytes() > file_bytes; }
};

/** Reads the headers of the file at `path`; no value when it can be read but is no DSD file. Throws
 *  Failure. */
std::optional<DsdHeaders> read_dsd_headers(const std::string& path);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CLASSIC_DSD_HEADERS_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A file cut into pieces, and pieces joined to a file, without any change to a sample. Where to cut is
// known by then.
//
// All throw Failure; what is damaged in an input of which the rest has been written is noted.

#ifndef CORVIN_CLI_CONVERT_SPLIT_H_
#define CORVIN_CLI_CONVERT_SPLIT_H_

#include <cstdint>
#include <functional>
#include <vector>

#include "cli/files/dsd_input.h"
#include "cli/files/output_file.h"
#include "cli/files/packed_input.h"
#include "cli/files/pcm_kind.h"
#include "corvin.hpp"

namespace corvin::cli {

/** A stretch of the input that becomes a file. Pieces go up; what lies between two is left out. */
struct Piece {
  uint64_t begin = 0;  // samples or frames
  uint64_t end = 0;    // UINT64_MAX for the last of a length that is not known
  OutputFile::Config output;
  std::function<TagSet()> tags;  // made when they are needed, for they may hold large pictures
};

/** Where a piece of DSD in such a file begins that is to begin at `sample`: DSDIFF and "1bit" hold
 *  whole bytes, so there it is the next one, up to seven samples later. */
uint64_t cut_for(corvin_container container, uint64_t sample);

void split_dsd(DsdInput& input, corvin_container container, const std::vector<Piece>& pieces,
               bool verify);
void split_pcm(PackedInput& input, PcmKind kind, const std::vector<Piece>& pieces, bool verify);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CONVERT_SPLIT_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The speakers of a mask as the library counts them, by name and in libsndfile's numbers.

#ifndef CORVIN_CLI_FILES_SPEAKERS_H_
#define CORVIN_CLI_FILES_SPEAKERS_H_

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace corvin::cli {

/** "FL FR LFE". Speakers without a name of ours are left out, here and in the next. */
std::string speaker_names(uint32_t mask);

/** libsndfile's SF_CHANNEL_MAP_ places, in the order of the bits. */
std::vector<int> channel_map(uint32_t mask);

/** The mask of such places; 0 when one has no bit or they stand in another order. */
uint32_t speaker_mask(std::span<const int> channel_map);

/** The mask for DSD, which has one pair of speakers behind or beside the listener: two at the sides
 *  alone become that pair. */
uint32_t dsd_speakers(uint32_t mask);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_SPEAKERS_H_

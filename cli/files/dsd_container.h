// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The containers of DSD: their names, the endings of their files, and what they hold.

#ifndef CORVIN_CLI_FILES_DSD_CONTAINER_H_
#define CORVIN_CLI_FILES_DSD_CONTAINER_H_

#include <cstdint>
#include <optional>
#include <string>

#include "corvin.h"

namespace corvin::cli {

/** The container that the ending of a file name stands for, in letters of either case. */
std::optional<corvin_container> container_of(const std::string& path);

/** "DSDIFF", "DSF" or "1bit" for a corvin_container, "unknown" for any other number. */
const char* container_name(uint32_t container);

/** Channels that the tool writes to a file of any kind. */
constexpr uint32_t kMostChannels = 8;

/** Channels that the tool writes to a container. */
constexpr uint32_t most_channels(corvin_container container) {
  return container == CORVIN_DSF ? 6 : kMostChannels;
}

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_DSD_CONTAINER_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Makes PCM that comes bit by bit readable as a FILE*, so that it never lies anywhere as a whole.
// The converter runs on the calling thread, the producer on another.

#ifndef CORVIN_CLI_CLASSIC_PCM_FEED_H_
#define CORVIN_CLI_CLASSIC_PCM_FEED_H_

#include <cstdint>
#include <cstdio>
#include <functional>
#include <span>

namespace corvin::cli {

/** Puts PCM into the buffer and returns how many bytes; 0: there is no more. */
using PcmProducer = std::function<size_t(std::span<uint8_t>)>;

/** Reads PCM from the stream until it has enough. */
using PcmConsumer = std::function<void(std::FILE*)>;

/** Runs both until both are through. A converter that comes back early ends the producer with the
 *  block it is at. SIGPIPE must be ignored.
 *  Throws std::system_error when there are no descriptors or threads left. */
void feed_pcm(const PcmProducer& producer, const PcmConsumer& converter);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CLASSIC_PCM_FEED_H_

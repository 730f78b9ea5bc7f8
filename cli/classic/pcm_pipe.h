// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The classic engine's conversions read and write PCM as a FILE*. Here that is a pipe, so that the
// PCM never lies anywhere as a whole. The converter runs on the calling thread, the other end on a
// thread of its own.

#ifndef CORVIN_CLI_CLASSIC_PCM_PIPE_H_
#define CORVIN_CLI_CLASSIC_PCM_PIPE_H_

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <span>

namespace corvin::cli {

/** Takes the PCM that a converter writes, and hands it on as it comes. */
class PcmDrain {
 public:
  /** Writes PCM to the stream and comes back when there is no more. */
  using Converter = std::function<void(std::FILE*)>;
  /** Takes whole frames; false: takes no more. */
  using Receiver = std::function<bool(std::span<const uint8_t>)>;

  /** Runs both until all is through. When the receiver refuses, the rest is thrown away, so the
   *  converter never waits on a full pipe; it may look at refused() and stop early. Bytes after the
   *  last whole frame are dropped.
   *  Throws std::system_error when there are no descriptors or threads left. */
  void run(size_t bytes_per_frame, const Converter& converter, const Receiver& receiver);

  /** Whether the receiver takes no more. Any thread. */
  bool refused() const { return refused_.load(std::memory_order_relaxed); }

 private:
  void receive(int descriptor, size_t bytes_per_frame, const Receiver& receiver);
  std::atomic<bool> refused_ = false;
};

/** Puts PCM into the buffer and returns how many bytes; 0: there is no more. */
using PcmProducer = std::function<size_t(std::span<uint8_t>)>;

/** Reads PCM from the stream until it has enough. */
using PcmConsumer = std::function<void(std::FILE*)>;

/** Runs both until both are through. A converter that comes back early ends the producer with the
 *  block it is at. SIGPIPE must be ignored.
 *  Throws std::system_error when there are no descriptors or threads left. */
void feed_pcm(const PcmProducer& producer, const PcmConsumer& converter);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CLASSIC_PCM_PIPE_H_

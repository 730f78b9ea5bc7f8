// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Writes PCM that is ready for the file (signed or floating, least significant byte first, channels
// interleaved in the order of the speakers' bits) into a file of any kind. What comes out depends on
// the sound and what is asked for alone: no file states the time at which it was made.

#ifndef CORVIN_CLI_FILES_PCM_WRITER_H_
#define CORVIN_CLI_FILES_PCM_WRITER_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "cli/files/pcm_kind.h"
#include "corvin.hpp"

namespace corvin::cli {

struct PcmWriterConfig {
  PcmKind kind = PcmKind::kWav;
  int descriptor = -1;  // open for reading, writing and seeking; left open
  uint32_t rate_hz = 44100;
  uint32_t channels = 2;
  uint32_t speakers = 0;  // mask of the channels' speakers; 0: not known
  corvin_sample_format format = CORVIN_S24;
  /** Bits of a sample that count, from the top; the others are 0. 0: all, 20 of
   *  CORVIN_S20. */
  uint32_t significant_bits = 0;
  /** Decides between WAV and RF64; no value: not known. */
  std::optional<uint64_t> expected_frames = {};
  const TagSet* tags = nullptr;  // used while the writer is made; tags_left_out() tells the rest
};

class PcmWriter {
 public:
  virtual ~PcmWriter() = default;
  PcmWriter() = default;
  PcmWriter(const PcmWriter&) = delete;
  PcmWriter& operator=(const PcmWriter&) = delete;

  /** Writes whole frames. */
  virtual bool write(std::span<const uint8_t> frames) = 0;

  /** Completes the file; nothing can be written afterwards. */
  virtual bool finish() = 0;

  /** Why the writer failed; empty unless it has. It refuses everything then. */
  const std::string& error() const { return error_; }

 protected:
  bool fail(std::string why) {
    if (error_.empty()) error_ = std::move(why);
    return false;
  }

 private:
  std::string error_;
};

/** Why no file of the kind can hold what is asked for, a sentence without subject; empty when one
 *  can. Does not look at the descriptor: to be asked before there is a file. */
std::string why_not_writable(const PcmWriterConfig& config);

/** Begins a file. Failures, also of this, are in the writer's error(). */
std::unique_ptr<PcmWriter> make_pcm_writer(PcmWriterConfig config);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_PCM_WRITER_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Writes PCM that is ready for the file (signed or floating, least significant byte first) as WAV,
// with the names of more than two channels, or as RF64 when it outgrows WAV's 4 GiB.

#ifndef CORVIN_CLI_FILES_WAV_WRITER_H_
#define CORVIN_CLI_FILES_WAV_WRITER_H_

#include <sndfile.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "corvin.h"

namespace corvin::cli {

/** The WAV files that the tool writes: integers of 16, 24 or 32 bits, or floating point of 32. */
constexpr int bits_of(corvin_sample_format format) {
  return format == CORVIN_S16 ? 16 : format == CORVIN_S24 ? 24 : 32;
}

class WavWriter {
 public:
  struct Config {
    int descriptor = -1;  // open for writing and seeking; left open
    int rate_hz = 44100;
    int channels = 2;
    uint32_t speakers = 0;  // mask of the channels' speakers; 0: not known
    corvin_sample_format format = CORVIN_S24;
    uint64_t expected_bytes = 0;  // of PCM; decides between WAV and RF64
  };

  /** After a failure here or in a call below, error() tells it and everything is refused. */
  explicit WavWriter(const Config& config);

  /** Writes whole frames. */
  bool write(std::span<const uint8_t> frames);

  /** Completes the header; nothing can be written afterwards. */
  bool finish();

  const std::string& error() const { return error_; }

 private:
  struct Closer {
    void operator()(SNDFILE* file) const { sf_close(file); }
  };
  std::unique_ptr<SNDFILE, Closer> file_;
  std::string error_;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_WAV_WRITER_H_

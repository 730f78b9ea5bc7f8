// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// WAV, RF64, W64, AIFF and CAF, with the names of more than two channels where the kind has a place
// for them. WAV becomes RF64 when it outgrows its 4 GiB.

#ifndef CORVIN_CLI_FILES_SNDFILE_WRITER_H_
#define CORVIN_CLI_FILES_SNDFILE_WRITER_H_

#include <sndfile.h>

#include <memory>
#include <vector>

#include "cli/files/pcm_writer.h"

namespace corvin::cli {

/** Of sound and tags, in files whose sizes have 32 bits; the rest is room for headers. */
constexpr uint64_t kMostShortBytes = 0xffffffff - 4096;

class SndfileWriter : public PcmWriter {
 public:
  explicit SndfileWriter(const PcmWriterConfig& config);

  bool write(std::span<const uint8_t> frames) override;
  bool finish() override;

 private:
  struct Closer {
    void operator()(SNDFILE* file) const { sf_close(file); }
  };

  void begin();
  bool put(std::span<const uint8_t> bytes);
  bool complete();

  const PcmWriterConfig config_;
  uint64_t bytes_ = 0;
  const std::vector<std::byte> tags_;  // that the file ends with
  std::vector<uint8_t> swapped_;
  std::unique_ptr<SNDFILE, Closer> file_;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_SNDFILE_WRITER_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A PCM file of packed samples, from its beginning to its name, for those who copy samples.

#ifndef CORVIN_CLI_CONVERT_PCM_FILE_H_
#define CORVIN_CLI_CONVERT_PCM_FILE_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "cli/convert/verify.h"
#include "cli/files/output_file.h"
#include "cli/files/packed_input.h"
#include "cli/files/pcm_writer.h"
#include "corvin.hpp"

namespace corvin::cli {

class PcmFile {
 public:
  struct Config {
    OutputFile::Config file;
    PcmKind kind = PcmKind::kWav;
    std::optional<uint64_t> frames = {};  // that will come; no value: not known
    const TagSet* tags = nullptr;         // lives as long as this
    bool verify = false;                  // finish() reads the file back
  };

  /** Begins a file of samples like those of `like`. Throws Failure, as all here do. */
  PcmFile(const PackedInput& like, const Config& config);

  /** Writes whole frames. */
  void write(std::span<const uint8_t> frames);

  /** Completes the file, gives it its name and says so. */
  void finish();

 private:
  Failure failure() const { return {kWriteError, config_.file.path, writer_->error()}; }

  const Config config_;
  PcmWriterConfig format_;
  std::string format_name_;
  std::optional<OutputFile> file_;
  std::unique_ptr<PcmWriter> writer_;
  PayloadHash payload_;
  uint64_t frames_ = 0;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CONVERT_PCM_FILE_H_

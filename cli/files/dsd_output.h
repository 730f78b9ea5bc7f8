// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A DSD file that the library writes into an OutputFile.

#ifndef CORVIN_CLI_FILES_DSD_OUTPUT_H_
#define CORVIN_CLI_FILES_DSD_OUTPUT_H_

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "cli/files/output_file.h"
#include "cli/files/write_log.h"
#include "cli/words/failure.h"
#include "corvin.hpp"

namespace corvin::cli {

class DsdOutput : private ByteStream {
 public:
  struct Config {
    OutputFile::Config file;
    corvin_container container = CORVIN_DSF;
    uint32_t dsd_rate_hz = 0;
    uint32_t channels = 0;
    uint32_t speakers = 0;
    bool verify = false;  // commit() reads the file back first
  };

  /** Begins the file. Throws Failure. */
  explicit DsdOutput(const Config& config);

  /** Hands over tags. Those that the file cannot hold are no reason to lose the sound: standard
   *  error tells of them. */
  void set_tags(const TagSet& tags, corvin_id3_form form = CORVIN_ID3_AS_READ);

  /** To be finished by the one who writes. */
  Writer& writer() { return *writer_; }

  /** Its name until commit(). */
  std::string path() const { return file_.path(); }

  bool has_failed() const { return !error_.empty(); }

  /** Why writing failed, once it has. */
  Failure write_failure() const { return {kWriteError, config_.file.path, error_}; }

  /** Gives the finished file its name. Throws Failure. */
  void commit();

  /** Prints the line on the finished file.
   *  @param duration  of the sound
   *  @param level     "peak -6.02 dBFS"; empty when it is not known */
  void print_summary(const std::string& duration, const std::string& level) const;

 private:
  bool seek(std::uint64_t offset) override;
  bool write(std::span<const std::byte> bytes) override;

  Config config_;
  OutputFile file_;
  WriteLog log_;  // when it is to be verified
  uint64_t offset_ = 0;
  std::string error_;  // the system's
  std::optional<Writer> writer_;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_DSD_OUTPUT_H_

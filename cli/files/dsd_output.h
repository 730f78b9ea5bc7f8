// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A DSD file that the studio engine writes, and what conversions to DSD say about it.

#ifndef CORVIN_CLI_FILES_DSD_OUTPUT_H_
#define CORVIN_CLI_FILES_DSD_OUTPUT_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "cli/convert/convert.h"
#include "cli/files/output_file.h"
#include "cli/words/exit_code.h"
#include "corvin.h"

namespace corvin::cli {

/** The rate in Hz that --rate asks for, "dsd64" counted from 48000 Hz or 44100 Hz; 0 when the studio
 *  engine does not have it. */
uint32_t studio_dsd_rate_hz(const std::string& text, bool of_48k_family);

class DsdOutput {
 public:
  struct Config {
    std::string path;
    std::string input_path;
    bool overwrite = false;
    uint32_t dsd_rate = 0;
    uint32_t channels = 0;
    uint32_t speakers = 0;
  };

  explicit DsdOutput(const Config& config);

  /** Begins the file; returns why that is not possible. */
  std::optional<Failure> open();

  corvin_writer* writer() const { return writer_.get(); }

  /** Ends the tool's work after a conversion into writer(): gives a finished file its name and prints
   *  a line on it, or reports the failure.
   *  @param duration  of the sound
   *  @param level     ", peak -6.02 dBFS", or nothing when it is not known */
  ExitCode finish(int status, const corvin_convert_report& result, const std::string& duration,
                  const std::string& level);

 private:
  struct Close {
    void operator()(corvin_writer* writer) const { corvin_writer_close(writer); }
  };

  static int seek(void* user, uint64_t offset);
  static int write(void* user, const void* from, size_t bytes);

  Config config_;
  OutputFile file_;
  uint64_t offset_ = 0;
  std::string error_;  // the system's, when writing failed
  std::unique_ptr<corvin_writer, Close> writer_;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_DSD_OUTPUT_H_

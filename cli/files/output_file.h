// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The file a command makes: written beside its name under a temporary one and renamed when it is
// complete, so that the name never stands for half a file. Whatever ends the tool before that (an
// error, an interrupt) leaves nothing behind and an older file of that name as it was. Any number of
// them at once, on any threads.

#ifndef CORVIN_CLI_FILES_OUTPUT_FILE_H_
#define CORVIN_CLI_FILES_OUTPUT_FILE_H_

#include <string>

#include "cli/words/failure.h"

namespace corvin::cli {

class OutputFile {
 public:
  struct Config {
    std::string path;
    std::string input_path;  // the file that must not be overwritten in any case
    bool overwrite = false;
  };

  /** Opens the file for writing, a character device as it is. Throws Failure, like commit(). */
  explicit OutputFile(Config config);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /** The open file, to be left open. */
  int descriptor() const { return descriptor_; }

  /** Its name until commit(), for those who open it themselves. */
  const std::string& path() const { return is_device_ ? target_ : temporary_path_; }

  /** Closes the file and gives it its name. */
  void commit();

 private:
  Failure write_error() const;
  Failure exists_already() const;
  Failure refusal(ExitCode code, const std::string& why) const;
  void check_target();
  void open_device();
  void open_temporary();
  void rename_to_target();

  Config config_;
  std::string target_;          // config_.path with symbolic links followed
  std::string temporary_path_;  // empty when there is none to remove
  bool is_device_ = false;
  int descriptor_ = -1;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_OUTPUT_FILE_H_

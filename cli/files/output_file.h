// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The file a command makes: written beside its name under a temporary one and renamed when it is
// complete, so that the name never stands for half a file. Whatever ends the tool before that (an
// error, an interrupt) leaves nothing behind and an older file of that name as it was.

#ifndef CORVIN_CLI_FILES_OUTPUT_FILE_H_
#define CORVIN_CLI_FILES_OUTPUT_FILE_H_

#include <optional>
#include <string>

#include "cli/words/exit_code.h"

namespace corvin::cli {

class OutputFile {
 public:
  struct Config {
    std::string path;
    std::string input_path;  // the file that must not be overwritten in any case
    bool overwrite = false;
  };

  explicit OutputFile(Config config) : config_(std::move(config)) {}
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /** Opens the file for writing; returns why it must or can not be. A character device is written
   *  to directly. */
  std::optional<Failure> open();

  /** The open file, to be left open. */
  int descriptor() const { return descriptor_; }

  /** Its name until commit(), for those who open it themselves. */
  const std::string& path() const { return is_device_ ? target_ : temporary_path_; }

  /** Closes the file and gives it its name. Call it when no other thread runs. */
  std::optional<Failure> commit();

 private:
  std::optional<Failure> check_target();
  std::optional<Failure> open_temporary();
  std::optional<Failure> rename_to_target();

  Config config_;
  std::string target_;          // config_.path with symbolic links followed
  std::string temporary_path_;  // empty when there is none to remove
  bool is_device_ = false;
  int descriptor_ = -1;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_OUTPUT_FILE_H_

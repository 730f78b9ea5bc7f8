// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A DSD file as the studio engine reads it, and the tool's words for what is wrong with it.

#ifndef CORVIN_CLI_FILES_DSD_INPUT_H_
#define CORVIN_CLI_FILES_DSD_INPUT_H_

#include <memory>
#include <optional>
#include <string>

#include "cli/words/exit_code.h"
#include "corvin.h"

namespace corvin::cli {

class StudioSource {
 public:
  /** Opens the file at `path`; returns why it cannot be worked with. Sound that is only not
   *  readable is no failure here. */
  std::optional<Failure> open(const std::string& path);

  /** Readable, but no DSD file. */
  bool is_of_unknown_kind() const { return is_of_unknown_kind_; }

  const corvin_file_info& info() const { return info_; }

  /** Why there is no sound to read; no value when there is. */
  std::optional<std::string> problem() const;

  /** Says on standard error what is odd about the file. */
  void note_warnings(const std::string& path) const;

  corvin_file* handle() const { return file_.get(); }

 private:
  struct Close {
    void operator()(corvin_file* file) const { corvin_file_close(file); }
  };
  std::unique_ptr<corvin_file, Close> file_;
  corvin_file_info info_{};
  bool is_of_unknown_kind_ = false;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_DSD_INPUT_H_

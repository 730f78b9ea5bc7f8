// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The file a command makes: written beside its name under a temporary one and renamed when it is
// complete and on the disk, so that the name never stands for half a file. Whatever ends the tool
// before that (an error, an interrupt) leaves nothing behind and an older file of that name as it was.
// Standard output ("-"), devices and pipes are written to as they are. Any number of them at once, on
// any threads.

#ifndef CORVIN_CLI_FILES_OUTPUT_FILE_H_
#define CORVIN_CLI_FILES_OUTPUT_FILE_H_

#include <sys/stat.h>

#include <memory>
#include <optional>
#include <string>

#include "cli/files/file_identities.h"
#include "cli/files/unnamed_file.h"
#include "cli/words/failure.h"

namespace corvin::cli {

/** Makes the directory that the file at `path` is to be in, if it is missing. Throws Failure. */
void make_directory_of(const std::string& path);

class OutputFile {
 public:
  struct Config {
    std::string path;        // "-" for standard output
    std::string input_path;  // the file that must not be overwritten in any case
    bool overwrite =
        false;           // replaces an older file, and keeps its mode and, if allowed, its owner
    bool force = false;  // even one that is write-protected
    bool preserve_time = false;  // the file gets the input's time of modification
    std::shared_ptr<const FileIdentities> other_inputs = {};  // not to be overwritten either
  };

  /** Opens the file for writing. A named pipe waits for its reader. What cannot be gone back over
   *  gets everything at commit(), through a file without a name. Throws Failure, like commit(). */
  explicit OutputFile(Config config);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /** Throws the Failure for a file that the constructor would refuse, as far as that can be told
   *  without opening one. */
  static void check(Config config);

  /** The open file, to be left open. */
  int descriptor() const { return held_ ? held_->descriptor() : descriptor_; }

  /** Its name until commit(), for those who open it themselves. */
  std::string path() const {
    return held_ ? held_->path() : temporary_path_.empty() ? target_ : temporary_path_;
  }

  /** Closes the file and gives it its name. */
  void commit();

 private:
  struct Unopened {};
  OutputFile(Config config, Unopened);
  Failure write_error() const;
  Failure exists_already() const;
  Failure refusal(ExitCode code, const std::string& why) const;
  bool is_input(const struct stat& status) const;
  void check_target();
  void open_standard_output();
  void send_held();
  void open_as_it_is();
  void open_temporary();
  void give_old_mode() const;
  void give_input_time() const;
  void rename_to_target();

  Config config_;
  std::string target_;                   // config_.path with symbolic links followed
  std::string temporary_path_;           // empty when there is none to remove
  std::optional<struct stat> as_it_is_;  // of a device or pipe
  std::optional<struct stat> older_;     // of the file to be replaced
  std::optional<timespec> input_time_;
  std::optional<UnnamedFile> held_;  // until commit(), for what cannot be gone back over
  int descriptor_ = -1;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_OUTPUT_FILE_H_

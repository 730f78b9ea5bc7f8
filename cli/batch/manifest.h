// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What a batch has done, as a file of one JSON object a line that is only ever appended to: so a run
// that was killed leaves a whole record of all that came before, and the next one goes on from there.

#ifndef CORVIN_CLI_BATCH_MANIFEST_H_
#define CORVIN_CLI_BATCH_MANIFEST_H_

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/words/failure.h"

namespace corvin::cli {

/** A file as it was. */
struct FileState {
  uint64_t bytes = 0;
  int64_t changed_ns = 0;  // since 1970
  bool operator==(const FileState&) const = default;
};

/** No value: there is no such file. */
std::optional<FileState> state_of_file(const std::string& path);

/** What became of one output. */
struct Record {
  std::string input, output;
  std::string options;  // as given, those that have a say in the sound
  FileState input_state = {};
  bool has_ended = false;  // the rest is of records of an end
  ExitCode exit = kDone;
  std::string message = {};  // why it failed
  uint64_t output_bytes = 0;
  std::string sum = {};  // of the output's payload, XXH3-128 in hexadecimal digits
  double gain_db = 0;
  std::optional<double> peak = {};  // 1.0 is full scale
  uint64_t clips = 0;
  double sound_seconds = 0, work_seconds = 0;

  bool is_success() const { return has_ended && (exit == kDone || exit == kDamage); }
};

/** The record in a line; no value for a line that is none. */
std::optional<Record> record_in(std::string_view line);

/** What runs have done to one output. */
struct History {
  std::optional<Record> made;  // by the last one that succeeded
  bool is_unfinished = false;  // the last one ended before it could tell
};

class Manifest {
 public:
  /** Opens the file, or makes it, and reads the records in it. What is no record is noted and passed
   *  over, such as the line that a power cut has left without its end. Throws Failure.
   *  @param read_only  nothing is made, and nothing can be appended */
  Manifest(const std::string& path, bool read_only);
  ~Manifest();
  Manifest(const Manifest&) = delete;
  Manifest& operator=(const Manifest&) = delete;

  /** What was recorded of an output when the file was opened. */
  History history_of(const std::string& output) const;

  /** The outputs that were made, in the order of their names, in UTF-8. */
  std::vector<std::string> outputs() const;

  /** Any thread. Throws Failure. */
  void append(const Record& record);

 private:
  /** Returns whether the last line has its end. */
  bool read();

  std::string path_;
  int descriptor_ = -1;
  std::map<std::string, History> histories_;  // by output
  std::mutex mutex_;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_BATCH_MANIFEST_H_

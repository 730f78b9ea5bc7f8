// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A DSD file to be read, with the tool's words for what is wrong with it.

#ifndef CORVIN_CLI_FILES_DSD_INPUT_H_
#define CORVIN_CLI_FILES_DSD_INPUT_H_

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/files/wavpack_dsd.h"
#include "cli/words/failure.h"
#include "corvin.hpp"

namespace corvin::cli {

/** What is wrong with a readable file that is of no kind of DSD. */
Failure no_dsd_file(const std::string& path);

class DsdInput {
 public:
  /** Opens the file at `path`, DSD in WavPack too; no value when it can be read but is no DSD file. Sound that is only
   *  not readable is no failure here. Throws Failure. */
  static std::optional<DsdInput> open(const std::string& path);

  /** The same for those who take DSD files only: anything else is a failure. */
  static DsdInput open_dsd(const std::string& path);

  const std::string& path() const { return path_; }
  const corvin_file_info& info() const { return info_; }
  File& file() { return file_; }

  /** Why there is no sound to read; empty when there is. */
  std::string problem() const { return file_.problem(); }

  /** Throws the problem, if there is one, as a Failure. */
  void require_sound() const;

  /** Whether the sound comes out of a WavPack file, which has no chunks of its own to tell of. */
  bool is_wavpack() const { return unpacked_ != nullptr; }

  /** Everything odd about the file as far as it was read, a sentence without subject each. */
  std::vector<std::string> warnings() const;

  /** The same, and what a file may lack without any harm to its sound. */
  std::vector<std::string> oddities() const;

  /** Whether the file has less sound than its headers state. */
  bool is_cut_short() const { return info_.samples < info_.stated_samples; }

  /** Throws a Failure when the file is cut short. */
  void require_whole() const;

  /** All its tags. Those that cannot be had are no reason to lose the sound: standard error tells of
   *  them. */
  TagSet tags();

  /** The channels and speakers of a conversion with these settings. */
  uint32_t channels_of(const ConvertSettings& settings) const;
  uint32_t speakers_of(const ConvertSettings& settings) const;

  /** Says on standard error what is odd about the file. */
  void note_warnings() const;

 private:
  DsdInput(const std::string& path, File file, std::unique_ptr<WavPackDsd> unpacked = {});

  std::string path_;
  std::unique_ptr<WavPackDsd> unpacked_;  // that `file_` reads, if it does
  File file_;
  corvin_file_info info_;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_DSD_INPUT_H_

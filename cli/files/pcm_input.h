// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A sound file that libsndfile reads.

#ifndef CORVIN_CLI_FILES_PCM_INPUT_H_
#define CORVIN_CLI_FILES_PCM_INPUT_H_

#include <sndfile.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace corvin::cli {

class PcmInput {
 public:
  /** Opens the file at `path`. Throws Failure. */
  explicit PcmInput(const std::string& path);

  const std::string& path() const { return path_; }
  uint32_t rate_hz() const { return static_cast<uint32_t>(info_.samplerate); }
  uint32_t channels() const { return static_cast<uint32_t>(info_.channels); }

  /** libsndfile's SF_FORMAT_ number of the samples in the file. */
  int sample_format() const { return info_.format & SF_FORMAT_SUBMASK; }

  /** Frames that the file declares; no value when it leaves that open. */
  std::optional<uint64_t> declared_frames() const;

  /** Bits of the speakers, in the channels' order, as the library counts them; 0 when the file does
   *  not tell. */
  uint32_t speakers() const;

  /** Fills room for whole frames with samples of full scale +-1, or with integers that fill an int,
   *  as far as there are any; returns the number of frames. */
  size_t read(std::span<double> samples);
  size_t read(std::span<int> samples);

  /** The text of one of libsndfile's SF_STR_ kinds; empty when the file has none. */
  std::string text(int kind) const;

 private:
  struct Closer {
    void operator()(SNDFILE* file) const { sf_close(file); }
  };
  std::string path_;
  std::unique_ptr<SNDFILE, Closer> file_;
  SF_INFO info_{};
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_PCM_INPUT_H_

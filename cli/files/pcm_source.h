// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A sound file that libsndfile reads, as the PCM that the library takes: doubles for the studio
// engine; signed integers, most significant byte first, for the classic one.

#ifndef CORVIN_CLI_FILES_PCM_SOURCE_H_
#define CORVIN_CLI_FILES_PCM_SOURCE_H_

#include <sndfile.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "cli/words/exit_code.h"

namespace corvin::cli {

class PcmSource {
 public:
  /** Opens the file at `path`; returns what is wrong with it. Opening again starts again. */
  std::optional<Failure> open(const std::string& path);

  int rate_hz() const { return info_.samplerate; }
  int channels() const { return info_.channels; }

  /** 8, 16, 24 or 32: as many as the file's own samples need. 24 for floating point and lossy
   *  coding, which state no number. */
  int bits() const { return bits_; }

  size_t bytes_per_frame() const { return static_cast<size_t>(channels() * bits_ / 8); }

  /** Frames that the file declares; no value when it leaves that open. */
  std::optional<uint64_t> declared_frames() const;

  /** Reads to the end and returns how many frames there were from here on. */
  uint64_t count_frames();

  /** Bits of the speakers, in the channels' order, as the library counts them; 0 when the file does
   *  not tell. */
  uint32_t speakers() const;

  /** Fills `samples`, room for whole frames, with samples of full scale +-1 as far as there are any;
   *  returns the number of frames. */
  size_t read(std::span<double> samples);

  /** Fills `pcm` with as many whole frames as fit and returns the bytes; 0 at the end. */
  size_t read(std::span<uint8_t> pcm);

  /** Samples read that lay beyond full scale and were set to it. */
  uint64_t clipped() const { return clipped_; }

  /** The text of one of libsndfile's SF_STR_ kinds; empty when the file has none. */
  std::string text(int kind) const;

 private:
  struct Closer {
    void operator()(SNDFILE* file) const { sf_close(file); }
  };
  std::unique_ptr<SNDFILE, Closer> file_;
  SF_INFO info_{};
  int bits_ = 0;
  bool is_integer_ = true;
  uint64_t clipped_ = 0;
  std::vector<int> integers_;
  std::vector<double> reals_;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_PCM_SOURCE_H_

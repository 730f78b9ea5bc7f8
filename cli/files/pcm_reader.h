// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What reads the samples of one kind of PCM file, for PcmInput.

#ifndef CORVIN_CLI_FILES_PCM_READER_H_
#define CORVIN_CLI_FILES_PCM_READER_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace corvin::cli {

struct PcmFacts {
  uint32_t rate_hz = 0;
  uint32_t channels = 0;
  int sample_format = 0;                // libsndfile's SF_FORMAT_ number of the samples in the file
  std::string kind = {};                // of the file: "FLAC", "WAV"
  uint32_t bits = 0;                    // of a sample, as wide as it is kept; 0: packed with loss
  std::optional<uint64_t> frames = {};  // that the file declares
  uint32_t speakers = 0;                // mask; 0: the file does not tell
  uint32_t odd_bits = 0;  // of an integer sample, where these are no whole bytes; else 0
};

class PcmReader {
 public:
  virtual ~PcmReader() = default;
  PcmReader() = default;
  PcmReader(const PcmReader&) = delete;
  PcmReader& operator=(const PcmReader&) = delete;

  const PcmFacts& facts() const { return facts_; }

  /** Fills room for whole frames with samples of full scale +-1, or with integers that fill an int,
   *  as far as there are any; returns the number of frames. */
  virtual size_t read(std::span<double> samples) = 0;
  virtual size_t read(std::span<int> samples) = 0;

  /** What failed in the file so far, a sentence without subject; empty: nothing. */
  virtual std::string damage() const = 0;

  /** The text of one of libsndfile's SF_STR_ kinds; empty when there is none. */
  virtual std::string text(int) const { return {}; }

 protected:
  PcmFacts facts_;
};

/** The reader of the file at `path`; null when its content is of another kind. Throws Failure for one
 *  that cannot be read. */
std::unique_ptr<PcmReader> open_flac(const std::string& path);
std::unique_ptr<PcmReader> open_wavpack(const std::string& path);
std::unique_ptr<PcmReader> open_sndfile(const std::string& path);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_PCM_READER_H_

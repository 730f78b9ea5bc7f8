// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A PCM file to be read: FLAC, WavPack, and what libsndfile reads.

#ifndef CORVIN_CLI_FILES_PCM_INPUT_H_
#define CORVIN_CLI_FILES_PCM_INPUT_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "cli/files/pcm_reader.h"

namespace corvin::cli {

class PcmInput {
 public:
  /** Opens the file at `path`. Throws Failure. */
  explicit PcmInput(const std::string& path);

  const std::string& path() const { return path_; }
  uint32_t rate_hz() const { return reader_->facts().rate_hz; }
  uint32_t channels() const { return reader_->facts().channels; }

  /** libsndfile's SF_FORMAT_ number of the samples in the file. */
  int sample_format() const { return reader_->facts().sample_format; }

  /** Bits of an integer sample, where these are no whole bytes; else 0. */
  uint32_t odd_bits() const { return reader_->facts().odd_bits; }

  /** What the file is: "FLAC", "WAV". */
  const std::string& kind() const { return reader_->facts().kind; }

  /** Of a sample in the file, as lossless coders count them; 0 when the sound is packed with loss. */
  uint32_t bits() const { return reader_->facts().bits; }

  /** Whether the samples in the file are floating. */
  bool is_float() const;

  /** Frames that the file declares, as far as it is long enough for them; no value when it leaves
   *  that open. */
  std::optional<uint64_t> declared_frames() const { return reader_->facts().frames; }

  /** Bits of the speakers, in the channels' order, as the library counts them; 0 when the file does
   *  not tell. */
  uint32_t speakers() const { return reader_->facts().speakers; }

  /** Fills room for whole frames with samples of full scale +-1, or with integers that fill an int,
   *  as far as there are any; returns the number of frames. What is damaged is left out, or silence
   *  where its length is known. */
  size_t read(std::span<double> samples) { return counted(reader_->read(samples), samples.size()); }
  size_t read(std::span<int> samples) { return counted(reader_->read(samples), samples.size()); }

  /** What is wrong with the sound, as far as it was read, a sentence without subject: "is cut short:
   *  ..."; empty when nothing is. To be asked after the last read. */
  std::string damage() const;

  /** The text of one of libsndfile's SF_STR_ kinds; empty when the file has none. */
  std::string text(int kind) const { return reader_->text(kind); }

 private:
  size_t counted(size_t frames, size_t room);

  std::string path_;
  std::unique_ptr<PcmReader> reader_;
  uint64_t missing_bytes_ = 0;  // that the headers state
  uint64_t frames_ = 0;         // read
  bool is_at_end_ = false;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_PCM_INPUT_H_

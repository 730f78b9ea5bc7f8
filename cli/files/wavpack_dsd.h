// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A WavPack file that holds DSD, shown to the library as the DSDIFF file that unpacking it makes.

#ifndef CORVIN_CLI_FILES_WAVPACK_DSD_H_
#define CORVIN_CLI_FILES_WAVPACK_DSD_H_

#include <wavpack/wavpack.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "corvin.hpp"

namespace corvin::cli {

class WavPackDsd : public ByteStream {
 public:
  /** Opens the file at `path`; null when it is no WavPack file with DSD that can be read. */
  static std::unique_ptr<WavPackDsd> open(const std::string& path);

  bool seek(std::uint64_t offset) override;
  std::int64_t read(std::span<std::byte> bytes) override;
  std::int64_t length() override;

  /** What failed so far, a sentence without subject; empty: nothing. */
  std::string damage() const;

 private:
  struct Close {
    void operator()(WavpackContext* context) const { WavpackCloseFile(context); }
  };
  using Handle = std::unique_ptr<WavpackContext, Close>;

  WavPackDsd(const std::string& path, Handle context);
  bool unpack_from(uint64_t frame);

  Handle context_;
  uint64_t channels_ = 0;
  uint64_t sound_bytes_ = 0;
  std::vector<std::byte> head_, tail_;  // what stands before and behind the sound
  uint64_t offset_ = 0;
  uint64_t first_ = 0;  // frame of eight samples of each channel, that `unpacked_` begins with
  std::vector<int32_t> unpacked_;
  uint64_t next_ = 0;  // frame that the unpacking goes on with
  bool is_cut_short_ = false;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_WAVPACK_DSD_H_

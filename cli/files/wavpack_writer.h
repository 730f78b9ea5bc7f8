// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// PCM as a lossless WavPack file, with the sum by which its tools check the sound.

#ifndef CORVIN_CLI_FILES_WAVPACK_WRITER_H_
#define CORVIN_CLI_FILES_WAVPACK_WRITER_H_

#include <wavpack/wavpack.h>

#include <memory>
#include <vector>

#include "cli/files/md5.h"
#include "cli/files/pcm_writer.h"

namespace corvin::cli {

class WavPackWriter : public PcmWriter {
 public:
  explicit WavPackWriter(const PcmWriterConfig& config);

  bool write(std::span<const uint8_t> frames) override;
  bool finish() override;

 private:
  struct Close {
    void operator()(WavpackContext* context) const { WavpackCloseFile(context); }
  };

  static int take_block(void* self, void* block, int32_t bytes);
  void begin();
  bool coder_failed();

  const PcmWriterConfig config_;
  uint64_t offset_ = 0;               // of the next byte in the file
  int system_error_ = 0;              // errno of a write that failed
  std::vector<uint8_t> first_block_;  // written once more when the length is known
  uint64_t frames_ = 0;
  Md5 sum_;
  const std::vector<std::byte> tags_;  // that the file ends with
  std::vector<int32_t> samples_;
  std::unique_ptr<WavpackContext, Close> context_;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_WAVPACK_WRITER_H_

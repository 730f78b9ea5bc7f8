// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// FLAC through its own library, which writes what others that embed it do not: samples of 32 bits
// and rates beyond those of the usual recorders.

#ifndef CORVIN_CLI_FILES_FLAC_WRITER_H_
#define CORVIN_CLI_FILES_FLAC_WRITER_H_

#include <FLAC/stream_encoder.h>

#include <memory>
#include <vector>

#include "cli/files/flac_tags.h"
#include "cli/files/pcm_writer.h"

namespace corvin::cli {

constexpr uint32_t kMostFlacChannels = 8;
constexpr uint32_t kMostFlacRateHz = 1048575;

class FlacWriter : public PcmWriter {
 public:
  explicit FlacWriter(const PcmWriterConfig& config);

  bool write(std::span<const uint8_t> frames) override;
  bool finish() override;

 private:
  struct Delete {
    void operator()(FLAC__StreamEncoder* encoder) const { FLAC__stream_encoder_delete(encoder); }
  };

  static FlacWriter& of(void* data) { return *static_cast<FlacWriter*>(data); }
  void begin();
  bool encoder_failed();

  const PcmWriterConfig config_;
  uint64_t offset_ = 0;   // of the next byte in the file
  int system_error_ = 0;  // errno of a write that failed
  bool is_open_ = false;
  std::vector<int32_t> samples_;
  // Before the encoder: it looks at them until it is deleted.
  std::vector<FlacBlock> blocks_;
  std::unique_ptr<FLAC__StreamEncoder, Delete> encoder_;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_FLAC_WRITER_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// DSD to PCM buffer by buffer, for hosts that stream: the plans and filters of the file conversion
// with threads that live from the first buffer to the last.

#ifndef CORVIN_CLASSIC_DECODE_DSD_TO_PCM_BUF_H_
#define CORVIN_CLASSIC_DECODE_DSD_TO_PCM_BUF_H_

#include <array>
#include <memory>

#include "classic/decode/buffer_channel.h"
#include "classic/decode/conversion_filter.h"
#include "corvin.h"

class CORVIN_API CDSDtoPCMBuf {
 public:
  /// Arguments as for GetCDSDtoPCMBufClass(). Throws std::invalid_argument for those out of range,
  /// std::bad_alloc and std::system_error.
  CDSDtoPCMBuf(int dsdRate, int pcmRate, bool lsbFirst, int bits, bool bigEndian);
  CDSDtoPCMBuf(const CDSDtoPCMBuf&) = delete;
  CDSDtoPCMBuf& operator=(const CDSDtoPCMBuf&) = delete;
  ~CDSDtoPCMBuf();

  /// As DSDtoPCMBuf_ToPCM().
  int ToPCM(const unsigned char* dsd, int bytes, unsigned char* pcm, int pcmSize);

  /// As DSDtoPCMBuf_Delay().
  int Delay() const;

 private:
  static constexpr std::size_t kChannels = 2;

  int dsd_rate_;
  int pcm_rate_;
  int sample_bytes_;
  ConversionFilter filter_;
  long long ahead_ = 0;  ///< input to come before the next output, in 1 / pcm_rate of a sample
  long long skip_left_;  ///< frames of the filter's delay still to drop
  std::array<std::unique_ptr<BufferChannel>, kChannels> channels_;
};

#endif  // CORVIN_CLASSIC_DECODE_DSD_TO_PCM_BUF_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// One channel of the buffer-mode engine: a thread that sleeps between buffers and turns each into
// PCM, with the filter's memory carried over. Where a buffer ends does not show: each output sample
// is computed as soon as its last input sample is there.

#ifndef CORVIN_CLASSIC_DECODE_BUFFER_CHANNEL_H_
#define CORVIN_CLASSIC_DECODE_BUFFER_CHANNEL_H_

#include <cstddef>
#include <thread>

#include "classic/decode/conversion_filter.h"
#include "classic/foundation/aligned_storage.h"
#include "classic/foundation/gate.h"
#include "classic/foundation/kernels.h"

class BufferChannel {
 public:
  struct Config {
    int dsd_rate;  ///< Hz
    int pcm_rate;  ///< Hz
    bool lsb_first;
    int bits;
    bool big_endian;
  };

  /// Starts the thread, which takes the kernels that are selected now.
  /// @param filter  outlives the channel; several channels may share it
  /// Throws std::bad_alloc and std::system_error.
  BufferChannel(const Config& config, ConversionFilter& filter);
  BufferChannel(const BufferChannel&) = delete;
  BufferChannel& operator=(const BufferChannel&) = delete;
  /// Ends the thread. No buffer is being converted.
  ~BufferChannel();

  /// Has the thread convert a buffer of this channel's bytes.
  /// @param pcm  the channel's place in the first stereo frame to be written
  void Start(const unsigned char* dsd, std::size_t bytes, unsigned char* pcm);
  /// Waits until the buffer is done.
  void Wait() { done_.Close(); }

 private:
  void Run();
  void Convert();
  int FilterPlanned();
  int FilterFallback();
  void TurnBlock();

  Config config_;
  ConversionFilter& filter_;
  Dot8Planned planned_kernel_;
  Dot8Plain plain_kernel_;
  std::size_t history_floats_;
  AlignedFloats work_;  ///< filter memory, then the block's samples so far
  AlignedFloats outputs_;
  int filled_ = 0;              ///< samples of the block
  std::size_t next_entry_ = 0;  ///< of the schedule
  long long next_output_ = 0;   ///< fallback: from the block's start, in 1 / pcm_rate of a sample
  int skip_left_;               ///< frames of the filter's delay still to drop

  const unsigned char* dsd_ = nullptr;  ///< the buffer at work
  std::size_t bytes_ = 0;
  unsigned char* pcm_ = nullptr;
  bool ending_ = false;
  Gate start_;
  Gate done_;
  std::thread thread_;
};

#endif  // CORVIN_CLASSIC_DECODE_BUFFER_CHANNEL_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Adapters between a conversion and a host: they hold the source stream and the host's progress
// callback. A conversion reads on its reader thread and reports on the caller's thread; the fields
// that both touch are atomic.

#ifndef CORVIN_CLASSIC_FOUNDATION_CALLBACK_INFO_H_
#define CORVIN_CLASSIC_FOUNDATION_CALLBACK_INFO_H_

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "corvin.h"

/// A source whose bytes are delivered as they stand: DSDIFF and "1bit" sound data.
class CORVIN_API CCallbackInfoDec {
 public:
  /// @param source        positioned at the first byte of sound data
  /// @param sound_bytes   bytes of sound data
  /// @param user_progress may be null
  CCallbackInfoDec(std::FILE* source, std::uint64_t sound_bytes,
                   CorvinProgressCallback user_progress, void* user_data);

  /// Delivers at most `size` bytes; 0 at the end, after a read error and after a cancel.
  int Read(void* buffer, int size);

  /// Reports the whole percentage when it has changed. False once the conversion is cancelled or
  /// the source has ended: there is nothing left to poll for.
  bool Progress();

  std::FILE* stream;
  std::uint64_t length;                     ///< bytes of sound data
  std::atomic<std::uint64_t> position = 0;  ///< bytes delivered
  CorvinProgressCallback progress;
  void* progressData;
  int lastPercent = -1;
  std::atomic<bool> cancelled = false;
  std::atomic<bool> ended = false;

 protected:
  std::uint64_t Remaining() const { return length - position; }
};

/// A DSF source: blocks of one channel each come out as one byte per channel in turn.
class CORVIN_API CCallbackInfoBlock : public CCallbackInfoDec {
 public:
  /// @param block_size     bytes per channel in a block, at least 1
  /// @param channel_count  at least 1
  CCallbackInfoBlock(std::FILE* source, std::uint64_t sound_bytes,
                     CorvinProgressCallback user_progress, void* user_data, int block_size,
                     int channel_count);
  ~CCallbackInfoBlock();

  /// As above; `size` is a whole number of frames of one byte per channel. A group of blocks that
  /// the file cuts short is silence beyond the cut.
  int Read(void* buffer, int size);
  bool Progress();

  std::vector<unsigned char> block;  ///< one group: channels x blockSize bytes
  int cursor;                        ///< next byte inside each channel's block
  int blockSize;
  int channels;

 private:
  bool LoadGroup();
};

/// A PCM source: every request is filled up with zeros.
class CORVIN_API CCallbackInfo : public CCallbackInfoDec {
 public:
  /// @param bytes_per_frame  at least 1
  CCallbackInfo(std::FILE* source, std::uint64_t pcm_bytes, CorvinProgressCallback user_progress,
                void* user_data, int dsd_rate, int pcm_rate, int bytes_per_frame);

  int Read(void* buffer, int size);
  bool Progress();

  int dsdRate;
  int pcmRate;
  std::uint64_t framesRead = 0;  ///< frames asked for
  std::uint64_t unitsRead = 0;   ///< advanced by 32768 with every read
  int divisor;                   ///< bytes per frame
};

CORVIN_API int readProc(void* buffer, int size, void* info);
CORVIN_API bool progressProc(void* info);
CORVIN_API int readProcDec(void* buffer, int size, void* info);
CORVIN_API int readProcBlock(void* buffer, int size, void* info);
CORVIN_API bool progressProcDec(void* info);
CORVIN_API bool progressProcBlock(void* info);

#endif  // CORVIN_CLASSIC_FOUNDATION_CALLBACK_INFO_H_

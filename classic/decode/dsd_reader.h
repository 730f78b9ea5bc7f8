// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// First stage of DSD to PCM: a thread that fills blocks from a callback or from a stereo buffer in
// memory, then adds the silence that flushes the filter. It does not know the containers.

#ifndef CORVIN_CLASSIC_DECODE_DSD_READER_H_
#define CORVIN_CLASSIC_DECODE_DSD_READER_H_

#include <cstdint>
#include <thread>

#include "classic/foundation/block_ring.h"
#include "corvin.h"

class CORVIN_API CDiskReaderDec {
 public:
  /// Starts reading at once. Every block is full: behind the last data byte come `tail` bytes of
  /// silence, and the last block is filled up with it; then comes the block of length 0.
  /// @param read        source; null when `memory` is set
  /// @param size        bytes in a block, all channels
  /// @param count       blocks in the ring
  /// @param locks       readers of each block, one per channel
  /// @param tail        bytes of silence, all channels
  /// @param total       bytes expected; informational
  /// @param memory      channel 0 in the first half, channel 1 in the second; or null. Blocks are
  ///                    halved alike
  /// @param memorySize  bytes in `memory`
  CDiskReaderDec(CorvinReadCallback read, void* data, int size, int count, int locks, int tail,
                 unsigned long long total, char* memory, long long memorySize);
  CDiskReaderDec(const CDiskReaderDec&) = delete;
  CDiskReaderDec& operator=(const CDiskReaderDec&) = delete;
  /// Joins the thread.
  ~CDiskReaderDec();

  CBufferDec* Read1Lock(int block, int channel);
  int Next(int seq) const { return NextSequence(seq, blocks_.count); }
  void Abandon() { blocks_.Abandon(); }

 private:
  static void DiskReaderThread(CDiskReaderDec* self) { self->Run(); }
  void Run();
  int FillFromCallback(char* block);
  int FillFromMemory(char* block);
  int AddSilence(char* block, int filled);

  CorvinReadCallback read_;
  void* data_;
  CBufferListDec blocks_;
  int block_bytes_;
  int tail_left_;
  char* memory_;
  long long memory_position_ = 0;
  long long memory_bytes_;
  std::thread thread_;
};

#endif  // CORVIN_CLASSIC_DECODE_DSD_READER_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// First stage of PCM to DSD: a thread that fills blocks with bare interleaved PCM from a callback
// or from memory, then adds the zeros that flush the filter. It does not interpret the bytes.

#ifndef CORVIN_CLASSIC_ENCODE_PCM_READER_H_
#define CORVIN_CLASSIC_ENCODE_PCM_READER_H_

#include <thread>

#include "classic/foundation/block_ring.h"
#include "corvin.h"

class CORVIN_API CDiskReader {
 public:
  /// Starts reading at once. Every block is full: behind the last data byte come `padBytes` zeros,
  /// and the last block is filled up with zeros; then comes the block of length 0.
  /// @param read       source; null with `pcmBuffer`
  /// @param blockBytes bytes in a block, all channels
  /// @param nb         blocks in the ring
  /// @param channels   readers of each block
  /// @param pcmBuffer  source in memory, or null; @param pcmBufferBytes its length
  CDiskReader(CorvinReadCallback read, void* data, int blockBytes, int nb, int channels,
              long long padBytes, char* pcmBuffer, long long pcmBufferBytes);
  CDiskReader(const CDiskReader&) = delete;
  CDiskReader& operator=(const CDiskReader&) = delete;
  /// Joins the thread.
  ~CDiskReader();

  CBuffer* Read1Lock(int n, int ch);
  int Next(int n) const { return NextSequence(n, blocks_.count); }
  void Abandon() { blocks_.Abandon(); }

 private:
  static void DiskReaderThread(CDiskReader* self) { self->Run(); }
  void Run();
  int Fill(char* block);

  CorvinReadCallback read_;
  void* data_;
  CBufferList blocks_;
  int block_bytes_;
  long long pad_left_;
  char* memory_;
  long long memory_position_ = 0;
  long long memory_bytes_;
  std::thread thread_;
};

#endif  // CORVIN_CLASSIC_ENCODE_PCM_READER_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Last stage of DSD to PCM: takes finished blocks in order, drops the filter's delay, stops at the
// exact length and puts the bytes into a stream, a buffer or a callback. It writes no header.

#ifndef CORVIN_CLASSIC_DECODE_PCM_WRITER_H_
#define CORVIN_CLASSIC_DECODE_PCM_WRITER_H_

#include <cstdio>
#include <thread>

#include "classic/foundation/block_ring.h"
#include "corvin.h"

/// The ring that the quantising stages fill, one lock per channel.
class CORVIN_API CWriterDec {
 public:
  CWriterDec(int count, int size, int locks);
  CWriterDec(const CWriterDec&) = delete;
  CWriterDec& operator=(const CWriterDec&) = delete;
  virtual ~CWriterDec();

  CBufferDec* Write1Lock(int block, int channel);
  void Abandon() { blocks_.Abandon(); }

 protected:
  CBufferListDec blocks_;
  int end_marker_ = 0;  ///< length of the block that ended the stream
};

class CORVIN_API CDiskWriterDec : public CWriterDec {
 public:
  /// Starts writing at once.
  /// @param file    FILE* for the bytes; not touched when `memory` is set. A short write is left to
  ///                the stream's error flag
  /// @param count   blocks in the ring, @param size bytes in each, @param locks channels
  /// @param skip    bytes to drop at the start
  /// @param limit   bytes to write at most
  /// @param memory  receives the bytes instead, or null
  CDiskWriterDec(void* file, int count, int size, int locks, int skip, unsigned long long limit,
                 char* memory);
  /// Joins the thread.
  ~CDiskWriterDec() override;

  /// Joins the thread and returns the end marker: 0 after a normal end.
  int Wait();

 private:
  static void DiskWriterThread(CDiskWriterDec* self) { self->Run(); }
  void Run();
  void Take(const CBufferDec& block);

  std::FILE* file_;
  char* memory_;
  unsigned long long bytes_written_ = 0;
  unsigned long long skip_left_;
  unsigned long long limit_left_;
  std::thread thread_;
};

/// Hands each block to a callback as it is, without skip or limit.
class CORVIN_API CBufferWriterDec : public CWriterDec {
 public:
  CBufferWriterDec(CorvinReadCallback write, void* data, int size, int count, int locks);
  ~CBufferWriterDec() override;

 private:
  static void BufferWriterThread(CBufferWriterDec* self) { self->Run(); }
  void Run();

  CorvinReadCallback write_;
  void* data_;
  std::thread thread_;
};

#endif  // CORVIN_CLASSIC_DECODE_PCM_WRITER_H_

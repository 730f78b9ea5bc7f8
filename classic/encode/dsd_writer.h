// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Last stage of PCM to DSD: takes the blocks that all modulators fill together, one byte per
// channel in turn, drops the filter's delay, stops at the exact length and writes the sound data.
// Headers are the entry point's.

#ifndef CORVIN_CLASSIC_ENCODE_DSD_WRITER_H_
#define CORVIN_CLASSIC_ENCODE_DSD_WRITER_H_

#include <cstdint>
#include <cstdio>
#include <thread>
#include <vector>

#include "classic/foundation/block_ring.h"
#include "corvin.h"

class CORVIN_API CWriter {
 public:
  CWriter(int blockBytes, int nb, int channels);
  CWriter(const CWriter&) = delete;
  CWriter& operator=(const CWriter&) = delete;
  virtual ~CWriter();

  /// Joins the thread and returns its result: 0 after a normal end, -1 when writing failed.
  virtual int Wait();

  CBuffer* Write1Lock(int n, int ch);
  void Abandon() { blocks_.Abandon(); }

 protected:
  /// Takes every block in turn; `take` gets its bytes and their count.
  template <class Take>
  void TakeBlocks(Take take) {
    for (int seq = 0;; seq = NextSequence(seq, blocks_.count)) {
      CBuffer* const block = blocks_.ReadLock(seq);
      if (block->Abandoned()) return;
      if (block->length < 1) {
        if (result_ == 0) result_ = block->length;
        return;
      }
      take(block->data, block->length);
      block->ReadUnlock();
    }
  }

  CBufferList blocks_;
  int result_ = 0;
  std::thread thread_;
};

/// Drops leading bytes and stops at a total.
class ByteWindow {
 public:
  ByteWindow(int skip_bytes, unsigned long long total_bytes);

  /// Cuts a block to the bytes that count: moves `data` and returns how many remain.
  int Cut(const char*& data, int length);

 private:
  unsigned long long skip_left_;
  unsigned long long total_left_;
};

/// Writes the bytes as they stand.
class CORVIN_API CDiskWriter : public CWriter {
 public:
  /// @param out        stream behind the header; not touched with `outBuffer`
  /// @param skipBytes  bytes to drop at the start, all channels
  /// @param totalBytes bytes to write, all channels
  /// @param outBuffer  destination in memory, or null. Each block's first half goes to the buffer's
  ///                   first half and its second half to the second: hosts with memory output read
  ///                   it so
  CDiskWriter(std::FILE* out, int blockBytes, int nb, int channels, int skipBytes,
              unsigned long long totalBytes, char* outBuffer);
  ~CDiskWriter() override;

 private:
  static void DiskWriterThread(CDiskWriter* self) { self->Run(); }
  void Run();

  std::FILE* out_;
  char* memory_;
  std::size_t memory_position_ = 0;
  std::size_t memory_half_;
  ByteWindow window_;
};

/// Writes blocks of one channel each, in turn; the last ones are filled up with zeros.
class CORVIN_API CBlockWriter : public CWriter {
 public:
  /// @param blockSize  bytes of a channel in a block
  /// @param outBuffer  destination in memory, or null: one region of totalBytes / channels bytes
  ///                   per channel, which gets the valid bytes alone
  CBlockWriter(std::FILE* out, int blockBytes, int nb, int channels, int blockSize, int skipBytes,
               unsigned long long totalBytes, char* outBuffer);
  ~CBlockWriter() override;

 private:
  static void BlockWriterThread(CBlockWriter* self) { self->Run(); }
  void Run();
  void Stage(const char* data, int length);
  void Flush();

  std::FILE* out_;
  std::vector<std::vector<char>> staging_;  ///< one block per channel
  std::size_t fill_ = 0;
  std::size_t block_size_;
  char* memory_;
  std::size_t memory_position_ = 0;
  std::size_t region_;
  ByteWindow window_;
};

/// Hands each block to a callback as it is, without skip or limit.
class CORVIN_API CBufferWriter : public CWriter {
 public:
  CBufferWriter(CorvinReadCallback write, void* data, int blockBytes, int nb, int channels);
  ~CBufferWriter() override;

 private:
  static void BufferWriterThread(CBufferWriter* self) { self->Run(); }
  void Run();

  CorvinReadCallback write_;
  void* data_;
};

#endif  // CORVIN_CLASSIC_ENCODE_DSD_WRITER_H_

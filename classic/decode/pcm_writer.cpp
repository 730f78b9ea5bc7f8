// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Writers of finished PCM blocks.

#include "classic/decode/pcm_writer.h"

#include <algorithm>
#include <cstring>

CWriterDec::CWriterDec(int count, int size, int locks) { blocks_.Init(count, size, locks); }

CWriterDec::~CWriterDec() { blocks_.Exit(); }

CBufferDec* CWriterDec::Write1Lock(int block, int channel) {
  return blocks_.Write1Lock(block, channel);
}

// ---- Stream or memory -------------------------------------------------------------------------

CDiskWriterDec::CDiskWriterDec(void* file, int count, int size, int locks, int skip,
                               unsigned long long limit, char* memory)
    : CWriterDec(count, size, locks),
      file_(static_cast<std::FILE*>(file)),
      memory_(memory),
      skip_left_(static_cast<unsigned long long>(std::max(skip, 0))),
      limit_left_(limit),
      thread_(DiskWriterThread, this) {}

CDiskWriterDec::~CDiskWriterDec() {
  if (thread_.joinable()) thread_.join();
}

int CDiskWriterDec::Wait() {
  if (thread_.joinable()) thread_.join();
  return end_marker_;
}

void CDiskWriterDec::Run() {
  for (int seq = 0;; seq = NextSequence(seq, blocks_.count)) {
    CBufferDec* const block = blocks_.ReadLock(seq);
    if (block->Abandoned()) return;
    if (block->length < 1) {
      end_marker_ = block->length;
      return;
    }
    Take(*block);
    block->ReadUnlock();
  }
}

void CDiskWriterDec::Take(const CBufferDec& block) {
  const auto length = static_cast<unsigned long long>(block.length);
  const unsigned long long skipped = std::min(length, skip_left_);
  skip_left_ -= skipped;
  const auto count = static_cast<std::size_t>(std::min(limit_left_, length - skipped));
  if (count == 0) return;
  if (memory_)
    std::memcpy(memory_ + bytes_written_, block.data + skipped, count);
  else if (file_)
    std::fwrite(block.data + skipped, 1, count, file_);
  bytes_written_ += count;
  limit_left_ -= count;
}

// ---- Callback ---------------------------------------------------------------------------------

CBufferWriterDec::CBufferWriterDec(CorvinReadCallback write, void* data, int size, int count,
                                   int locks)
    : CWriterDec(count, size, locks),
      write_(write),
      data_(data),
      thread_(BufferWriterThread, this) {}

CBufferWriterDec::~CBufferWriterDec() { thread_.join(); }

void CBufferWriterDec::Run() {
  for (int seq = 0;; seq = NextSequence(seq, blocks_.count)) {
    CBufferDec* const block = blocks_.ReadLock(seq);
    if (block->Abandoned() || block->length < 1) return;
    if (write_) write_(block->data, block->length, data_);
    block->ReadUnlock();
  }
}

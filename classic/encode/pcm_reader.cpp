// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Filling blocks to the brim, so that no later stage computes from what a block held before.

#include "classic/encode/pcm_reader.h"

#include <algorithm>
#include <cstring>

CDiskReader::CDiskReader(CorvinReadCallback read, void* data, int blockBytes, int nb, int channels,
                         long long padBytes, char* pcmBuffer, long long pcmBufferBytes)
    : read_(read),
      data_(data),
      block_bytes_(blockBytes),
      pad_left_(padBytes),
      memory_(pcmBuffer),
      memory_bytes_(pcmBufferBytes) {
  blocks_.Init(nb, blockBytes, channels);
  thread_ = std::thread(DiskReaderThread, this);
}

CDiskReader::~CDiskReader() { thread_.join(); }

CBuffer* CDiskReader::Read1Lock(int n, int ch) { return blocks_.Read1Lock(n, ch); }

void CDiskReader::Run() {
  bool data_left = true;
  for (int seq = 0;; seq = Next(seq)) {
    CBuffer* const block = blocks_.WriteLock(seq);
    if (block->Abandoned()) return;
    int filled = data_left ? Fill(block->data) : 0;
    if (filled < block_bytes_) {
      data_left = false;
      if (filled > 0 || pad_left_ > 0) {
        std::memset(block->data + filled, 0, static_cast<std::size_t>(block_bytes_ - filled));
        pad_left_ -= block_bytes_ - filled;
        filled = block_bytes_;
      }
    }
    block->WriteUnlock(filled);
    if (filled == 0) return;
  }
}

/// Reads on until the block is full or the source ends; returns the bytes read.
int CDiskReader::Fill(char* block) {
  if (memory_) {
    const auto count = std::clamp<long long>(memory_bytes_ - memory_position_, 0, block_bytes_);
    std::memcpy(block, memory_ + memory_position_, static_cast<std::size_t>(count));
    memory_position_ += count;
    return static_cast<int>(count);
  }
  int filled = 0;
  while (read_ && filled < block_bytes_) {
    const int count = read_(block + filled, block_bytes_ - filled, data_);
    if (count < 1) break;
    filled += std::min(count, block_bytes_ - filled);
  }
  return filled;
}

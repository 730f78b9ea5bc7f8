// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Filling blocks to the brim, so that no later stage computes from what a block held before.

#include "classic/decode/dsd_reader.h"

#include <algorithm>
#include <cstring>

#include "formats/bytes/bit_order.h"

using corvin::formats::kSilence;

CDiskReaderDec::CDiskReaderDec(CorvinReadCallback read, void* data, int size, int count, int locks,
                               int tail, unsigned long long, char* memory, long long memorySize)
    : read_(read),
      data_(data),
      block_bytes_(size),
      tail_left_(tail),
      memory_(memory),
      memory_bytes_(memorySize) {
  blocks_.Init(count, size, locks);
  try {
    thread_ = std::thread(DiskReaderThread, this);
  } catch (...) {
    blocks_.Exit();
    throw;
  }
}

CDiskReaderDec::~CDiskReaderDec() {
  thread_.join();
  blocks_.Exit();
}

CBufferDec* CDiskReaderDec::Read1Lock(int block, int channel) {
  return blocks_.Read1Lock(block, channel);
}

void CDiskReaderDec::Run() {
  bool data_left = true;
  for (int seq = 0;; seq = NextSequence(seq, blocks_.count)) {
    CBufferDec* const block = blocks_.WriteLock(seq);
    if (block->Abandoned()) return;
    int filled = 0;
    if (data_left) {
      filled = memory_ ? FillFromMemory(block->data) : FillFromCallback(block->data);
      data_left = filled == block_bytes_;
    }
    if (!data_left) filled = AddSilence(block->data, filled);
    block->WriteUnlock(filled);
    if (filled == 0) return;
  }
}

/// Reads on until the block is full or the source ends.
int CDiskReaderDec::FillFromCallback(char* block) {
  int filled = 0;
  while (read_ && filled < block_bytes_) {
    const int count = read_(block + filled, block_bytes_ - filled, data_);
    if (count < 1) break;
    filled += std::min(count, block_bytes_ - filled);
  }
  return filled;
}

/// Returns twice the bytes put into each half.
int CDiskReaderDec::FillFromMemory(char* block) {
  const long long left = memory_bytes_ / 2 - memory_position_;
  const auto count = static_cast<std::size_t>(std::clamp<long long>(left, 0, block_bytes_ / 2));
  std::memcpy(block, memory_ + memory_position_, count);
  std::memcpy(block + block_bytes_ / 2, memory_ + memory_bytes_ / 2 + memory_position_, count);
  memory_position_ += static_cast<long long>(count);
  return static_cast<int>(2 * count);
}

/// Fills the rest of a block with silence while any of the tail is left or the block has begun;
/// returns the block's length, 0 when there is nothing more to say.
int CDiskReaderDec::AddSilence(char* block, int filled) {
  if (filled == 0 && tail_left_ <= 0) return 0;
  const auto rest = [](int from, int end) { return static_cast<std::size_t>(end - from); };
  if (memory_) {
    const int half = block_bytes_ / 2;
    std::memset(block + filled / 2, kSilence, rest(filled / 2, half));
    std::memset(block + half + filled / 2, kSilence, rest(filled / 2, half));
  } else {
    std::memset(block + filled, kSilence, rest(filled, block_bytes_));
  }
  tail_left_ -= block_bytes_ - filled;
  return block_bytes_;
}

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Blocks and rings. Gates are always taken in ascending reader index, so that no two threads hold
// gates of one block in different orders.

#include "classic/foundation/block_ring.h"

#include <cstring>
#include <memory>
#include <stdexcept>

#include "classic/foundation/aligned_storage.h"

CBufferDec::CBufferDec() = default;
CBufferDec::~CBufferDec() { Exit(); }

bool CBufferDec::Init(int block_size, int block_readers) {
  if (block_size < 0 || block_readers < 0 || block_readers > kMaxReaders)
    throw std::invalid_argument("block ring");
  Exit();
  readers = block_readers;
  for (int i = 0; i < readers; ++i) {
    freeGate[i].Reset(true);
    fullGate[i].Reset(false);
  }
  abandoned_ = false;
  size = block_size;
  data = static_cast<char*>(AllocateAligned(static_cast<std::size_t>(size)));
  return true;
}

void CBufferDec::SetLength(int value) {
  const std::lock_guard lock(guard);
  length = value;
}

void CBufferDec::WriteLock(int new_tag) {
  for (int i = 0; i < readers; ++i) freeGate[i].Close();
  const std::lock_guard lock(guard);
  tag = new_tag;
  length = 0;
}

void CBufferDec::WriteUnlock(int new_length) {
  SetLength(new_length);
  for (int i = 0; i < readers; ++i) fullGate[i].Open();
}

void CBufferDec::ReadLock() {
  for (int i = 0; i < readers; ++i) fullGate[i].Close();
}

void CBufferDec::ReadUnlock() {
  for (int i = 0; i < readers; ++i) freeGate[i].Open();
}

void CBufferDec::Write1Lock(int new_tag, int reader) {
  freeGate[reader].Close();
  const std::lock_guard lock(guard);
  tag = new_tag;
}

void CBufferDec::Write1Unlock(int reader, int new_length) {
  SetLength(new_length);
  fullGate[reader].Open();
}

void CBufferDec::Read1Lock(int reader) { fullGate[reader].Close(); }

void CBufferDec::Read1Unlock(int reader) { freeGate[reader].Open(); }

void CBufferDec::Exit() {
  FreeAligned(data);
  data = nullptr;
}

void CBufferDec::Abandon() {
  abandoned_.store(true, std::memory_order_release);
  for (int i = 0; i < readers; ++i) {
    freeGate[i].Break();
    fullGate[i].Break();
  }
}

CBuffer::CBuffer() = default;
CBuffer::~CBuffer() = default;

bool CBuffer::Init(int block_size, int block_readers) {
  CBufferDec::Init(block_size, block_readers);
  std::memset(data, 0, static_cast<std::size_t>(size));
  return true;
}

// ---- Rings ------------------------------------------------------------------------------------

template <class Block>
bool BlockRing<Block>::Init(int ring_depth, int size, int readers) {
  if (ring_depth < 0) throw std::invalid_argument("block ring");
  Exit();
  auto array = std::make_unique<Block[]>(static_cast<std::size_t>(ring_depth));
  for (int i = 0; i < ring_depth; ++i) array[static_cast<std::size_t>(i)].Init(size, readers);
  count = ring_depth;
  blocks = array.release();
  return true;
}

template <class Block>
Block* BlockRing<Block>::WriteLock(int seq) {
  Block* const block = &blocks[seq % count];
  block->WriteLock(seq);
  return block;
}

template <class Block>
Block* BlockRing<Block>::ReadLock(int seq) {
  Block* const block = &blocks[seq % count];
  block->ReadLock();
  return block;
}

template <class Block>
Block* BlockRing<Block>::Write1Lock(int seq, int reader) {
  Block* const block = &blocks[seq % count];
  block->Write1Lock(seq, reader);
  return block;
}

template <class Block>
Block* BlockRing<Block>::Read1Lock(int seq, int reader) {
  Block* const block = &blocks[seq % count];
  block->Read1Lock(reader);
  return block;
}

template <class Block>
void BlockRing<Block>::Exit() {
  delete[] blocks;
  blocks = nullptr;
}

template <class Block>
void BlockRing<Block>::Abandon() {
  if (!blocks) return;
  for (int i = 0; i < count; ++i) blocks[i].Abandon();
}

template class BlockRing<CBufferDec>;
template class BlockRing<CBuffer>;

CBufferListDec::CBufferListDec() = default;
CBufferListDec::~CBufferListDec() = default;
bool CBufferListDec::Init(int ring_depth, int size, int readers) {
  return BlockRing::Init(ring_depth, size, readers);
}
CBufferDec* CBufferListDec::WriteLock(int seq) { return BlockRing::WriteLock(seq); }
CBufferDec* CBufferListDec::ReadLock(int seq) { return BlockRing::ReadLock(seq); }
CBufferDec* CBufferListDec::Write1Lock(int seq, int reader) {
  return BlockRing::Write1Lock(seq, reader);
}
CBufferDec* CBufferListDec::Read1Lock(int seq, int reader) {
  return BlockRing::Read1Lock(seq, reader);
}
void CBufferListDec::Exit() { BlockRing::Exit(); }

CBufferList::CBufferList() = default;
CBufferList::~CBufferList() { Exit(); }
bool CBufferList::Init(int ring_depth, int size, int readers) {
  return BlockRing::Init(ring_depth, size, readers);
}
CBuffer* CBufferList::WriteLock(int seq) { return BlockRing::WriteLock(seq); }
CBuffer* CBufferList::ReadLock(int seq) { return BlockRing::ReadLock(seq); }
CBuffer* CBufferList::Write1Lock(int seq, int reader) { return BlockRing::Write1Lock(seq, reader); }
CBuffer* CBufferList::Read1Lock(int seq, int reader) { return BlockRing::Read1Lock(seq, reader); }
void CBufferList::Exit() { BlockRing::Exit(); }

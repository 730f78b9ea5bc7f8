// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Moving bytes through the rings, and the end of a stream with calls still waiting in it.

#include "classic/stream/stream_rings.h"

namespace {

constexpr int kRingDepth = 4;
constexpr long long kSamplesPerBlock = 4096;
constexpr long long kMaxBlockBytes = 1 << 24;

/// Number of the block at a position. It turns over at a multiple of the rings' depth, so that
/// places stay in turn.
std::int32_t SequenceAt(std::uint64_t pos, std::int32_t block_size) {
  return static_cast<std::int32_t>(pos / static_cast<std::uint64_t>(block_size) & 0x7fffffff);
}

bool IsBlockSize(long long bytes) { return bytes >= 1 && bytes <= kMaxBlockBytes; }

}  // namespace

bool StreamRings::InitRings(int channels, int dsdRate, int pcmRate, int bits) {
  for (auto* block : {&dsdReadBlock, &dsdWriteBlock, &pcmReadBlock, &pcmWriteBlock})
    *block = nullptr;
  for (auto* seq : {&dsdReadSeq, &dsdWriteSeq, &pcmReadSeq, &pcmWriteSeq}) *seq = -1;
  for (auto* pos : {&dsdReadPos, &dsdWritePos, &pcmReadPos, &pcmWritePos}) *pos = 0;
  dsdBlockSize = pcmBlockSize = 0;

  if (channels < 1 || dsdRate < 1 || pcmRate < 1 || bits < 8) return false;
  const long long dsd_bytes = channels * kSamplesPerBlock;
  const long long pcm_frames = pcmRate * kSamplesPerBlock / dsdRate;
  if (!IsBlockSize(dsd_bytes) || !IsBlockSize(pcm_frames)) return false;
  const long long frame_bytes = static_cast<long long>(bits / 8) * channels;
  if (!IsBlockSize(frame_bytes) || !IsBlockSize(frame_bytes * pcm_frames)) return false;

  dsdRing.Init(kRingDepth, static_cast<int>(dsd_bytes), 1);
  pcmRing.Init(kRingDepth, static_cast<int>(frame_bytes * pcm_frames), 1);
  dsdBlockSize = static_cast<std::int32_t>(dsd_bytes);
  pcmBlockSize = static_cast<std::int32_t>(frame_bytes * pcm_frames);
  return true;
}

StreamRings::~StreamRings() {
  ending_ = true;
  // Whoever waits for a block that a side holds learns that the stream has ended.
  if (CBufferDec* const block = dsdReadBlock) block->Read1Unlock(0);
  if (CBufferDec* const block = dsdWriteBlock) block->Write1Unlock(0, 0);
  if (CBufferDec* const block = pcmReadBlock) {
    block->Read1Unlock(0);
    block->Write1Unlock(0, 0);
  }
  // Whoever waits for any other block would do so for ever.
  dsdRing.Abandon();
  pcmRing.Abandon();
  converter.reset();
  const std::unique_lock none_inside(calls_);
  dsdRing.Exit();
  pcmRing.Exit();
}

int StreamRings::Push(const StreamSide& side, const unsigned char* data, int size, int period) {
  const std::shared_lock entered(calls_);
  int moved = 0;
  while (data && side.block_size > 0 && moved < size) {
    const std::uint64_t pos = side.pos;
    const CBufferDec* const block = HoldFree(side, pos);
    if (!block) break;
    auto offset = static_cast<int>(pos % static_cast<std::uint64_t>(period));
    if (offset >= side.block_size)
      offset = static_cast<int>(pos % static_cast<std::uint64_t>(side.block_size));
    const int count = std::min(size - moved, side.block_size - offset);
    std::memcpy(block->data + offset, data + moved, static_cast<std::size_t>(count));
    side.pos = pos + static_cast<std::uint64_t>(count);
    moved += count;
  }
  return moved;
}

/// The block at `pos`, for writing; null when the stream ends.
CBufferDec* StreamRings::HoldFree(const StreamSide& side, std::uint64_t pos) {
  const std::int32_t seq = SequenceAt(pos, side.block_size);
  if (side.seq == seq) return side.block;
  if (CBufferDec* const full = side.block.exchange(nullptr)) full->Write1Unlock(0, side.block_size);
  side.seq = -1;
  CBufferDec* const block = side.ring.Write1Lock(seq, 0);
  if (ending_) return nullptr;
  side.block = block;
  side.seq = seq;
  return block;
}

/// The block at `pos`, for reading; null when the stream ends.
CBufferDec* StreamRings::HoldPublished(const StreamSide& side, std::uint64_t pos) {
  const std::int32_t seq = SequenceAt(pos, side.block_size);
  if (side.seq == seq) return side.block;
  if (CBufferDec* const used = side.block.exchange(nullptr)) used->Read1Unlock(0);
  side.seq = -1;
  CBufferDec* const block = side.ring.Read1Lock(seq, 0);
  if (ending_) return nullptr;
  side.block = block;
  side.seq = seq;
  return block;
}

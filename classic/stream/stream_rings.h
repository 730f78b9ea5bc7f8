// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The two rings of a stream, one of DSD and one of PCM bytes, with a side that pushes and a side
// that pulls at each. Bytes come and go in pieces of any size. Nothing is converted here.

#ifndef CORVIN_CLASSIC_STREAM_STREAM_RINGS_H_
#define CORVIN_CLASSIC_STREAM_STREAM_RINGS_H_

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <memory>
#include <shared_mutex>

#include "classic/foundation/block_ring.h"
#include "classic/stream/converter.h"

/// One side of a ring: how far it has come and the block that it holds.
struct StreamSide {
  CBufferListDec& ring;
  std::int32_t block_size;
  std::atomic<CBufferDec*>& block;
  std::int32_t& seq;
  std::atomic<std::uint64_t>& pos;
};

/// Each side belongs to one thread at a time.
class StreamRings {
 public:
  StreamRings(const StreamRings&) = delete;
  StreamRings& operator=(const StreamRings&) = delete;

  std::unique_ptr<StreamConverter> converter;
  CBufferListDec dsdRing;
  CBufferListDec pcmRing;
  std::atomic<CBufferDec*> dsdReadBlock = nullptr;  ///< held by a side, or null
  std::atomic<CBufferDec*> dsdWriteBlock = nullptr;
  std::atomic<CBufferDec*> pcmReadBlock = nullptr;
  std::atomic<CBufferDec*> pcmWriteBlock = nullptr;
  std::int32_t dsdBlockSize = 0;  ///< bytes; 0 before Init
  std::int32_t pcmBlockSize = 0;
  std::int32_t dsdReadSeq = -1;  ///< number of the block held, -1 for none
  std::int32_t dsdWriteSeq = -1;
  std::int32_t pcmReadSeq = -1;
  std::int32_t pcmWriteSeq = -1;
  std::atomic<std::uint64_t> dsdReadPos = 0;  ///< bytes moved since Init
  std::atomic<std::uint64_t> dsdWritePos = 0;
  std::atomic<std::uint64_t> pcmReadPos = 0;
  std::atomic<std::uint64_t> pcmWritePos = 0;

 protected:
  StreamRings() = default;
  /// Ends what the sides hold, lets every call that waits return, and waits for it to do so.
  ~StreamRings();

  /// Builds the rings. False, with rings that take and give nothing, when the arguments make no
  /// block of 1..2^24 bytes. Throws std::bad_alloc.
  bool InitRings(int channels, int dsdRate, int pcmRate, int bits);

  StreamSide DsdReader() { return {dsdRing, dsdBlockSize, dsdReadBlock, dsdReadSeq, dsdReadPos}; }
  StreamSide DsdWriter() {
    return {dsdRing, dsdBlockSize, dsdWriteBlock, dsdWriteSeq, dsdWritePos};
  }
  StreamSide PcmReader() { return {pcmRing, pcmBlockSize, pcmReadBlock, pcmReadSeq, pcmReadPos}; }
  StreamSide PcmWriter() {
    return {pcmRing, pcmBlockSize, pcmWriteBlock, pcmWriteSeq, pcmWritePos};
  }

  /// Copies into the ring. A block is published, at its full length, when the side moves on to the
  /// next one; waits while the ring is full.
  /// @param period  the place inside a block is the position modulo this, or modulo the block size
  ///                where that would lie outside the block
  /// @return        bytes taken: `size`, less when the stream ends meanwhile
  int Push(const StreamSide& side, const unsigned char* data, int size, int period);

  /// Copies out of the ring; waits for blocks to be published and takes each whole.
  /// @param limit  bytes that may be taken now; 0 ends the call
  /// @return       bytes delivered
  template <class Limit>
  int Pull(const StreamSide& side, unsigned char* buffer, int size, Limit limit) {
    const std::shared_lock entered(calls_);
    int moved = 0;
    while (buffer && side.block_size > 0 && moved < size) {
      const std::uint64_t allowed = limit();
      const std::uint64_t pos = side.pos;
      if (allowed == 0) break;
      const CBufferDec* const block = HoldPublished(side, pos);
      if (!block) break;
      const int offset = static_cast<int>(pos % static_cast<std::uint64_t>(side.block_size));
      const int room = std::min(size - moved, side.block_size - offset);
      const auto count = std::min<std::uint64_t>(allowed, static_cast<std::uint64_t>(room));
      std::memcpy(buffer + moved, block->data + offset, static_cast<std::size_t>(count));
      side.pos = pos + count;
      moved += static_cast<int>(count);
    }
    return moved;
  }

 private:
  CBufferDec* HoldFree(const StreamSide& side, std::uint64_t pos);
  CBufferDec* HoldPublished(const StreamSide& side, std::uint64_t pos);

  std::atomic<bool> ending_ = false;  ///< no side takes another block
  std::shared_mutex calls_;           ///< held shared by every call, alone by the end
};

#endif  // CORVIN_CLASSIC_STREAM_STREAM_RINGS_H_

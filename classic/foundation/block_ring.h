// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The ring of blocks that joins two neighbouring stages: one writer fills a block, up to eight
// readers consume it, and it returns to the writer when all of them have released it. A block of
// length 0 ends the stream. One design under two pairs of names, one for each direction; this file
// knows nothing of what the bytes mean.

#ifndef CORVIN_CLASSIC_FOUNDATION_BLOCK_RING_H_
#define CORVIN_CLASSIC_FOUNDATION_BLOCK_RING_H_

#include <atomic>
#include <cstdint>
#include <mutex>

#include "classic/foundation/gate.h"
#include "corvin.h"

/// One block. The writer has `data` to itself between WriteLock and WriteUnlock; the readers share
/// it read-only between their lock and unlock.
class CORVIN_API CBufferDec {
 public:
  static constexpr int kMaxReaders = 8;

  CBufferDec();
  CBufferDec(const CBufferDec&) = delete;
  CBufferDec& operator=(const CBufferDec&) = delete;
  ~CBufferDec();

  /// Allocates `size` bytes, left uninitialised, for 0..8 readers. Returns true; throws
  /// std::bad_alloc when there is no memory and std::invalid_argument for other reader counts.
  bool Init(int size, int readers);

  /// Waits until every reader has released the block, then sets `tag` and a length of 0.
  void WriteLock(int tag);
  /// Publishes `length` valid bytes to every reader.
  void WriteUnlock(int length);
  /// Waits until the block is published to every reader index.
  void ReadLock();
  void ReadUnlock();

  /// The single-reader pair. The argument orders differ on purpose, callers are written to them:
  /// tag before reader here, reader before length below. `length` is left as it was.
  void Write1Lock(int tag, int reader);
  void Write1Unlock(int reader, int length);
  void Read1Lock(int reader);
  void Read1Unlock(int reader);

  /// Frees the storage; the block may be initialised again. Harmless when called twice.
  void Exit();

  /// Lets every waiting and future lock through at once: the stream is given up. Stages look at
  /// Abandoned() after each lock and end.
  void Abandon();
  bool Abandoned() const { return abandoned_.load(std::memory_order_acquire); }

  Gate freeGate[kMaxReaders];  ///< closed while reader i holds the previous contents
  Gate fullGate[kMaxReaders];  ///< open while reader i has not consumed the contents
  std::int32_t size = 0;       ///< capacity in bytes
  std::int32_t readers = 0;
  char* data = nullptr;     ///< storage on a 32-byte boundary
  std::int32_t tag = 0;     ///< sequence number of the contents
  std::int32_t length = 0;  ///< valid bytes; 0 ends the stream
  std::mutex guard;         ///< protects `tag` and `length`

 private:
  void SetLength(int value);

  std::atomic<bool> abandoned_ = false;
};

/// The same block for the PCM to DSD side, whose storage starts as zeros.
class CORVIN_API CBuffer : public CBufferDec {
 public:
  CBuffer();
  ~CBuffer();
  bool Init(int size, int readers);
};

/// A ring of `count` blocks. Sequence number `seq` lives at place seq % count; every lock returns
/// the block, on which it is undone.
template <class Block>
class BlockRing {
 public:
  BlockRing() = default;
  BlockRing(const BlockRing&) = delete;
  BlockRing& operator=(const BlockRing&) = delete;

  bool Init(int ring_depth, int size, int readers);
  Block* WriteLock(int seq);
  Block* ReadLock(int seq);
  Block* Write1Lock(int seq, int reader);
  Block* Read1Lock(int seq, int reader);
  /// Frees the blocks; `count` keeps its value. Harmless when called twice.
  void Exit();
  /// Abandons every block.
  void Abandon();

  std::int32_t count = 0;
  Block* blocks = nullptr;
};

/// The number after `seq` in a stream of any length: it turns over at a multiple of the ring's
/// depth, so that places stay in turn.
inline int NextSequence(int seq, int ring_depth) {
  constexpr int kTurn = 1 << 30;
  return seq == kTurn / ring_depth * ring_depth - 1 ? 0 : seq + 1;
}

extern template class BlockRing<CBufferDec>;
extern template class BlockRing<CBuffer>;

/// Released only by Exit(): owners of a DSD to PCM ring end its threads first and then call it, so
/// the destructor leaves the blocks alone.
class CORVIN_API CBufferListDec : public BlockRing<CBufferDec> {
 public:
  CBufferListDec();
  ~CBufferListDec();
  // The ring's own functions, exported under this class's name.
  bool Init(int ring_depth, int size, int readers);
  CBufferDec* WriteLock(int seq);
  CBufferDec* ReadLock(int seq);
  CBufferDec* Write1Lock(int seq, int reader);
  CBufferDec* Read1Lock(int seq, int reader);
  void Exit();
};

/// The PCM to DSD ring releases itself.
class CORVIN_API CBufferList : public BlockRing<CBuffer> {
 public:
  CBufferList();
  ~CBufferList();
  bool Init(int ring_depth, int size, int readers);
  CBuffer* WriteLock(int seq);
  CBuffer* ReadLock(int seq);
  CBuffer* Write1Lock(int seq, int reader);
  CBuffer* Read1Lock(int seq, int reader);
  void Exit();
};

#endif  // CORVIN_CLASSIC_FOUNDATION_BLOCK_RING_H_

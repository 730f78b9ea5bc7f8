// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "classic/foundation/block_ring.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

/// A writer of `kBlocks` numbered blocks of varying length against eight readers of varying speed:
/// each sees every block once, in order, whole.
template <class List>
void RunContended() {
  constexpr int kReaders = 8, kBlocks = 3000, kDepth = 4, kSize = 256;
  List ring;
  ring.Init(kDepth, kSize, kReaders);
  std::vector<std::thread> readers;
  std::atomic<int> faults = 0;
  for (int r = 0; r < kReaders; ++r) {
    readers.emplace_back([&ring, &faults, r] {
      for (int seq = 0;; ++seq) {
        auto* const block = ring.Read1Lock(seq, r);
        if (block->tag != seq) ++faults;
        if (block->length == 0) {
          if (seq != kBlocks) ++faults;
          block->Read1Unlock(r);
          return;
        }
        for (int i = 0; i < block->length; ++i)
          if (block->data[i] != static_cast<char>(seq)) ++faults;
        if (seq % 64 == r) std::this_thread::yield();
        block->Read1Unlock(r);
      }
    });
  }
  for (int seq = 0; seq <= kBlocks; ++seq) {
    auto* const block = ring.WriteLock(seq);
    if (block->length != 0) ++faults;
    const int length = seq == kBlocks ? 0 : 1 + seq % kSize;
    std::memset(block->data, seq, static_cast<std::size_t>(length));
    block->WriteUnlock(length);
  }
  for (auto& reader : readers) reader.join();
  ring.Exit();
  EXPECT_EQ(faults, 0);
}

TEST(BlockRing, EightReadersSeeEveryBlockInOrder) {
  RunContended<CBufferListDec>();
  RunContended<CBufferList>();
}

TEST(BlockRing, SingleReaderPairKeepsTheLength) {
  CBufferDec block;
  block.Init(8, 1);
  block.Write1Lock(7, 0);
  block.Write1Unlock(0, 5);
  block.Read1Lock(0);
  block.Read1Unlock(0);
  block.Write1Lock(8, 0);
  EXPECT_EQ(block.tag, 8);
  EXPECT_EQ(block.length, 5);
  block.Write1Unlock(0, 3);
  block.ReadLock();
  block.ReadUnlock();
  block.WriteLock(9);
  EXPECT_EQ(block.length, 0);
}

TEST(BlockRing, WithoutReadersNothingWaits) {
  CBufferListDec ring;
  ring.Init(1, 4, 0);
  for (int seq = 0; seq < 3; ++seq) {
    ring.WriteLock(seq)->WriteUnlock(4);
    EXPECT_EQ(ring.ReadLock(seq)->tag, seq);
  }
  ring.Exit();
  ring.Exit();
  EXPECT_EQ(ring.count, 1);
  EXPECT_EQ(ring.blocks, nullptr);
}

TEST(BlockRing, StorageIsAlignedRemembersItsAllocationAndStartsAsZeros) {
  for (int size : {0, 1, 31, 4096}) {
    CBuffer block;
    block.Init(size, 1);
    const auto at = reinterpret_cast<std::uintptr_t>(block.data);
    EXPECT_EQ(at % 32, 0u);
    std::uintptr_t allocation;
    std::memcpy(&allocation, block.data - sizeof allocation, sizeof allocation);
    EXPECT_TRUE(allocation + sizeof allocation <= at && at < allocation + 64) << size;
    EXPECT_EQ(std::count(block.data, block.data + size, 0), size);
  }
}

TEST(BlockRing, RefusesMoreThanEightReaders) {
  CBufferDec block;
  EXPECT_THROW(block.Init(8, 9), std::invalid_argument);
  EXPECT_THROW(block.Init(8, -1), std::invalid_argument);
  EXPECT_THROW(block.Init(-1, 1), std::invalid_argument);
}

TEST(BlockRing, AbandonWakesBothSides) {
  CBufferList full, empty;
  full.Init(1, 16, 1);
  empty.Init(1, 16, 1);
  full.WriteLock(0)->WriteUnlock(1);
  std::thread writer([&] { EXPECT_TRUE(full.WriteLock(1)->Abandoned()); });
  std::thread reader([&] { EXPECT_TRUE(empty.ReadLock(0)->Abandoned()); });
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  full.Abandon();
  empty.Abandon();
  writer.join();
  reader.join();
}

TEST(BlockRing, SequenceTurnsOverInStep) {
  for (int depth : {1, 4, 7, 12}) {
    int seq = (1 << 30) - 3 * depth;
    for (int i = 0; i < 10 * depth; ++i) {
      const int next = NextSequence(seq, depth);
      ASSERT_GE(next, 0);
      ASSERT_EQ(next % depth, (seq % depth + 1) % depth);
      seq = next;
    }
    EXPECT_LT(seq, 1 << 29);
  }
}

}  // namespace

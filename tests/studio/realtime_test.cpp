// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The decoder's promise not to allocate on the caller's thread once it is made.

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "tests/studio/streams.h"

// Counts this program's allocations. Never inlined: g++ would take malloc and delete for a
// mismatch.
namespace {
std::atomic<std::size_t> allocations = 0;
}  // namespace

__attribute__((noinline)) void* operator new(std::size_t size) {
  ++allocations;
  if (void* place = std::malloc(size)) return place;
  throw std::bad_alloc();
}
__attribute__((noinline)) void* operator new(std::size_t size, std::align_val_t alignment) {
  ++allocations;
  const auto grain = static_cast<std::size_t>(alignment);
  if (void* place = std::aligned_alloc(grain, (size + grain - 1) / grain * grain)) return place;
  throw std::bad_alloc();
}
__attribute__((noinline)) void operator delete(void* place) noexcept { std::free(place); }
__attribute__((noinline)) void operator delete(void* place, std::align_val_t) noexcept {
  std::free(place);
}
__attribute__((noinline)) void operator delete(void* place, std::size_t,
                                               std::align_val_t) noexcept {
  std::free(place);
}
__attribute__((noinline)) void operator delete(void* place, std::size_t) noexcept {
  std::free(place);
}

namespace corvin::studio {
namespace {

TEST(DecoderRealTime, NothingIsAllocatedAfterCreation) {
  DecoderSettings settings;
  settings.channels = 3;
  settings.block_bytes = 64;
  Decoder decoder(settings);
  const Bytes data(40000, 0x69);
  Bytes out(3 * 3 * 5000);
  const std::size_t before = allocations;
  for (int round = 0; round < 2; ++round) {
    for (int i = 0; i < 20; ++i) {
      decoder.push(data);
      decoder.pull(out.data(), 5000);
    }
    decoder.finish();
    while (decoder.pull(out.data(), 5000) > 0) continue;
    decoder.reset();
  }
  EXPECT_EQ(allocations, before);
}

}  // namespace
}  // namespace corvin::studio

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Aligned heap storage that remembers its own allocation.

#include "classic/foundation/aligned_storage.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

namespace {
constexpr std::size_t kAlignment = 32;
constexpr std::size_t kOverhead = kAlignment - 1 + sizeof(void*);
}  // namespace

void* AllocateAligned(std::size_t bytes) {
  if (bytes > std::numeric_limits<std::size_t>::max() - kOverhead) throw std::bad_alloc();
  char* const allocation = static_cast<char*>(std::malloc(bytes + kOverhead));
  if (!allocation) throw std::bad_alloc();
  const auto address = reinterpret_cast<std::uintptr_t>(allocation);
  const auto aligned = (address + kOverhead) & ~std::uintptr_t{kAlignment - 1};
  char* const storage = allocation + (aligned - address);
  std::memcpy(storage - sizeof(void*), &allocation, sizeof(void*));
  return storage;
}

void FreeAligned(void* storage) {
  if (!storage) return;
  void* allocation;
  std::memcpy(&allocation, static_cast<char*>(storage) - sizeof(void*), sizeof(void*));
  std::free(allocation);
}

AlignedFloats MakeAlignedFloats(std::size_t count) {
  if (count > std::numeric_limits<std::size_t>::max() / sizeof(float)) throw std::bad_alloc();
  AlignedFloats floats(static_cast<float*>(AllocateAligned(count * sizeof(float))));
  std::fill_n(floats.get(), count, 0.0f);
  return floats;
}

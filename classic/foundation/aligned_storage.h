// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Heap storage on the 32-byte boundaries that the vector kernels read from. The word before the
// aligned start holds the address of the allocation itself, which is what release frees.

#ifndef CORVIN_CLASSIC_FOUNDATION_ALIGNED_STORAGE_H_
#define CORVIN_CLASSIC_FOUNDATION_ALIGNED_STORAGE_H_

#include <cstddef>
#include <memory>

/// Returns `bytes` of uninitialised storage on a 32-byte boundary; throws std::bad_alloc.
void* AllocateAligned(std::size_t bytes);

/// Frees what AllocateAligned() returned; null is allowed.
void FreeAligned(void* storage);

struct AlignedDeleter {
  void operator()(float* storage) const { FreeAligned(storage); }
};
using AlignedFloats = std::unique_ptr<float[], AlignedDeleter>;

/// Returns `count` floats of 0 on a 32-byte boundary; throws std::bad_alloc.
AlignedFloats MakeAlignedFloats(std::size_t count);

#endif  // CORVIN_CLASSIC_FOUNDATION_ALIGNED_STORAGE_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Counts a program's allocations. Included by one source file of it: it replaces the operators.

#ifndef CORVIN_TESTS_SUPPORT_ALLOCATION_COUNT_H_
#define CORVIN_TESTS_SUPPORT_ALLOCATION_COUNT_H_

#include <atomic>
#include <cstdlib>
#include <new>

// Never inlined: g++ would take malloc and delete for a
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

#endif  // CORVIN_TESTS_SUPPORT_ALLOCATION_COUNT_H_

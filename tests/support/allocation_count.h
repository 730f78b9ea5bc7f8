// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Counts a program's allocations and fails them from a number on. Included by one source file of
// it: it replaces the operators.

#ifndef CORVIN_TESTS_SUPPORT_ALLOCATION_COUNT_H_
#define CORVIN_TESTS_SUPPORT_ALLOCATION_COUNT_H_

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace {
std::atomic<std::size_t> allocations = 0;
std::atomic<std::size_t> last_allocation = SIZE_MAX;  // that does not fail

bool may_allocate() { return ++allocations <= last_allocation; }
}  // namespace

// Never inlined: g++ would take malloc and delete for a mismatch.

__attribute__((noinline)) void* operator new(std::size_t size) {
  void* place = may_allocate() ? std::malloc(size) : nullptr;
  if (place != nullptr) return place;
  throw std::bad_alloc();
}
__attribute__((noinline)) void* operator new(std::size_t size, std::align_val_t alignment) {
  const auto grain = static_cast<std::size_t>(alignment);
  const std::size_t whole = (size + grain - 1) / grain * grain;
  void* place = may_allocate() ? std::aligned_alloc(grain, whole) : nullptr;
  if (place != nullptr) return place;
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

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "classic/foundation/dispatch_semaphore.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdint>
#include <memory>
#include <string>
#include <thread>

namespace {

void ExpectCounts(DispatchSemaphore& semaphore) {
  semaphore.Wait();
  semaphore.Wait();
  std::thread poster([&] {
    for (int i = 0; i < 1000; ++i) semaphore.Post();
  });
  for (int i = 0; i < 1000; ++i) semaphore.Wait();
  poster.join();
}

TEST(DispatchSemaphore, IsNamedAfterItsStage) {
  const int stage = 0;
  auto semaphore = std::make_unique<DispatchSemaphore>(&stage, 2);
  if (!semaphore->Named()) GTEST_SKIP() << "this system has no named semaphores";
  char name[64];
  std::snprintf(name, sizeof name, "/semDispatch%lx",
                static_cast<unsigned long>(reinterpret_cast<std::uintptr_t>(&stage)));
  sem_t* const same = sem_open(name, 0);
  ASSERT_NE(same, SEM_FAILED);
  sem_close(same);
  ExpectCounts(*semaphore);
  semaphore.reset();
  EXPECT_EQ(sem_open(name, 0), SEM_FAILED);
}

// Two at one address stand for two processes that take the same name: neither may fail or steal.
TEST(DispatchSemaphore, WorksWhenTheNameIsGone) {
  const int stage = 0;
  DispatchSemaphore first(&stage, 2);
  DispatchSemaphore second(&stage, 2);
  ExpectCounts(first);
  ExpectCounts(second);
}

}  // namespace

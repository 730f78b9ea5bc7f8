// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Named where possible, private otherwise.

#include "classic/foundation/dispatch_semaphore.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>

namespace {

std::string NameFor(const void* stage) {
  char name[48];
  std::snprintf(name, sizeof name, "/semDispatch%lx",
                static_cast<unsigned long>(reinterpret_cast<std::uintptr_t>(stage)));
  return name;
}

/// The system's list of open semaphores is shared by the process; opening and closing take turns.
std::mutex& NamesLock() {
  static std::mutex mutex;
  return mutex;
}

}  // namespace

DispatchSemaphore::DispatchSemaphore(const void* stage, unsigned initial)
    : name_(NameFor(stage)), count_(initial) {
  const std::lock_guard lock(NamesLock());
  sem_unlink(name_.c_str());
  named_ = sem_open(name_.c_str(), O_CREAT | O_EXCL, 0777, initial);
}

DispatchSemaphore::~DispatchSemaphore() {
  if (!Named()) return;
  const std::lock_guard lock(NamesLock());
  sem_close(named_);
  sem_unlink(name_.c_str());
}

void DispatchSemaphore::Wait() {
  if (Named()) {
    while (sem_wait(named_) != 0 && errno == EINTR) {
    }
    return;
  }
  std::unique_lock lock(mutex_);
  posted_.wait(lock, [this] { return count_ > 0; });
  --count_;
}

void DispatchSemaphore::Post() {
  if (Named()) {
    sem_post(named_);
    return;
  }
  {
    const std::lock_guard lock(mutex_);
    ++count_;
  }
  posted_.notify_one();
}

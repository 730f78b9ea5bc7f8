// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Counts the idle workers of a filter stage: the named POSIX semaphore "/semDispatch%lx" of the
// stage's address, or, where the system refuses it (no shared-memory mount, a name that another
// process has just taken), a count private to the process.

#ifndef CORVIN_CLASSIC_FOUNDATION_DISPATCH_SEMAPHORE_H_
#define CORVIN_CLASSIC_FOUNDATION_DISPATCH_SEMAPHORE_H_

#include <semaphore.h>

#include <condition_variable>
#include <mutex>
#include <string>

class DispatchSemaphore {
 public:
  DispatchSemaphore(const void* stage, unsigned initial);
  DispatchSemaphore(const DispatchSemaphore&) = delete;
  DispatchSemaphore& operator=(const DispatchSemaphore&) = delete;
  ~DispatchSemaphore();

  void Wait();
  void Post();
  bool Named() const { return named_ != SEM_FAILED; }

 private:
  std::string name_;
  sem_t* named_;
  std::mutex mutex_;
  std::condition_variable posted_;
  unsigned count_;
};

#endif  // CORVIN_CLASSIC_FOUNDATION_DISPATCH_SEMAPHORE_H_

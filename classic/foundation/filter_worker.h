// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What the pools of filter workers of all stages share: a worker with a mailbox for one job, and
// the queue of the idle ones. Workers finish in any order; the places that they fill were claimed
// in order before the jobs were posted.

#ifndef CORVIN_CLASSIC_FOUNDATION_FILTER_WORKER_H_
#define CORVIN_CLASSIC_FOUNDATION_FILTER_WORKER_H_

#include <atomic>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "classic/foundation/block_ring.h"
#include "classic/foundation/dispatch_semaphore.h"
#include "classic/foundation/gate.h"

/// A thread with a mailbox. The most derived class calls StartWorker() last in its constructor and
/// StopWorker() first in its destructor.
class FilterWorker {
 public:
  FilterWorker(const FilterWorker&) = delete;
  FilterWorker& operator=(const FilterWorker&) = delete;
  virtual ~FilterWorker() = default;

  /// Waits until the worker's thread runs.
  void WaitReady() { ready_.Close(); }

 protected:
  /// @param mailbox_bytes  capacity; starts as zeros
  explicit FilterWorker(int mailbox_bytes);

  /// Waits until the mailbox is free, copies `bytes` bytes into it, has `prepare` store what else
  /// belongs to the job, and wakes the worker. 0 bytes end the stream.
  template <class Prepare>
  void PostJob(int tag, const void* data, int bytes, CBufferDec* out, Prepare prepare) {
    mailbox_.Write1Lock(tag, 0);
    {
      const std::lock_guard lock(data_lock_);
      CopyIn(data, bytes);
      out_ = out;
      prepare();
    }
    mailbox_.Write1Unlock(0, bytes);
  }

  void StartWorker();
  /// Finishes a job that was posted, wakes the worker and joins it.
  void StopWorker();

  /// Filters the `bytes` bytes of a job, which start on a 32-byte boundary, into out.data and
  /// returns the number of bytes there.
  virtual int Filter(const char* in, int bytes, CBufferDec& out) = 0;
  /// Returns the worker to its stage's idle queue.
  virtual void BecomeIdle() = 0;

 private:
  void CopyIn(const void* data, int bytes);
  void Run();

  CBufferDec mailbox_;
  Gate ready_;
  std::mutex data_lock_;  ///< guards the mailbox's contents and what belongs to the job
  std::atomic<bool> running_ = false;
  CBufferDec* out_ = nullptr;
  std::thread thread_;
};

/// The idle workers of a stage, in the order in which they became idle.
template <class Worker>
class IdleQueue {
 public:
  /// @param stage  whose address names the semaphore
  IdleQueue(const void* stage, unsigned workers)
      : ring_(2 * static_cast<std::size_t>(workers)), semaphore_(stage, workers) {}

  /// Adds one of the `workers`, whose places the semaphore counts from the start.
  void Fill(Worker* worker) { ring_[put_++] = worker; }

  /// Waits for an idle worker.
  Worker* Take() {
    semaphore_.Wait();
    const std::lock_guard lock(mutex_);
    return std::exchange(ring_[take_++ % ring_.size()], nullptr);
  }

  void Put(Worker* worker) {
    {
      const std::lock_guard lock(mutex_);
      ring_[put_++ % ring_.size()] = worker;
    }
    semaphore_.Post();
  }

 private:
  std::mutex mutex_;
  std::vector<Worker*> ring_;
  std::size_t take_ = 0;
  std::size_t put_ = 0;
  DispatchSemaphore semaphore_;
};

#endif  // CORVIN_CLASSIC_FOUNDATION_FILTER_WORKER_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Threads that take numbered jobs in the order in which they were handed in.

#ifndef CORVIN_STUDIO_THREADS_WORKER_POOL_H_
#define CORVIN_STUDIO_THREADS_WORKER_POOL_H_

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace corvin::studio {

/// Jobs are numbers below a fixed count, each handed in again only after it was finished. One
/// thread owns the pool; the work of one job may hand in others.
class WorkerPool {
 public:
  /// @param work  does job `job` on worker `worker` < threads; must not throw
  /// Throws std::system_error when a thread cannot be started.
  WorkerPool(std::size_t threads, std::size_t jobs,
             std::function<void(std::size_t worker, std::size_t job)> work);
  ~WorkerPool();
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;

  void hand_in(std::size_t job);
  /// The same, before all that wait: for a job that others wait for.
  void hand_in_first(std::size_t job);
  /// Counts a job as unfinished that another one will hand in.
  void announce(std::size_t job);
  bool finished(std::size_t job);
  void wait_for(std::size_t job);
  /// Takes back the jobs that no worker has begun, those that others still hand in included, and
  /// waits for the others.
  void clear();

 private:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  void serve(std::size_t worker);
  void stop();

  std::function<void(std::size_t, std::size_t)> work_;
  std::mutex mutex_;
  std::condition_variable has_work_;
  std::condition_variable has_result_;
  std::vector<std::size_t> queue_;  // oldest first
  std::vector<bool> finished_;
  std::size_t busy_ = 0;
  std::size_t awaited_ = kNone;  // whose end is to be told, so that others' wake nobody
  bool stopping_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_THREADS_WORKER_POOL_H_

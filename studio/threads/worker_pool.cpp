// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/threads/worker_pool.h"

#include <utility>

namespace corvin::studio {

WorkerPool::WorkerPool(std::size_t threads, std::size_t jobs,
                       std::function<void(std::size_t, std::size_t)> work)
    : work_(std::move(work)), finished_(jobs) {
  queue_.reserve(jobs);
  threads_.reserve(threads);
  try {
    for (std::size_t i = 0; i < threads; ++i) threads_.emplace_back([this, i] { serve(i); });
  } catch (...) {
    stop();
    throw;
  }
}

WorkerPool::~WorkerPool() { stop(); }

void WorkerPool::stop() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  has_work_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

void WorkerPool::hand_in(std::size_t job) {
  {
    const std::lock_guard lock(mutex_);
    finished_[job] = false;
    queue_.push_back(job);
  }
  has_work_.notify_one();
}

void WorkerPool::hand_in_first(std::size_t job) {
  {
    const std::lock_guard lock(mutex_);
    finished_[job] = false;
    queue_.insert(queue_.begin(), job);
  }
  has_work_.notify_one();
}

void WorkerPool::announce(std::size_t job) {
  const std::lock_guard lock(mutex_);
  finished_[job] = false;
}

bool WorkerPool::finished(std::size_t job) {
  const std::lock_guard lock(mutex_);
  return finished_[job];
}

void WorkerPool::wait_for(std::size_t job) {
  std::unique_lock lock(mutex_);
  awaited_ = job;
  has_result_.wait(lock, [this, job] { return finished_[job]; });
  awaited_ = kNone;
}

void WorkerPool::clear() {
  std::unique_lock lock(mutex_);
  has_result_.wait(lock, [this] {
    queue_.clear();
    return busy_ == 0;
  });
}

void WorkerPool::serve(std::size_t worker) {
  std::unique_lock lock(mutex_);
  for (;;) {
    has_work_.wait(lock, [this] { return stopping_ || !queue_.empty(); });
    if (stopping_) return;
    const std::size_t job = queue_.front();
    queue_.erase(queue_.begin());
    ++busy_;
    lock.unlock();
    work_(worker, job);
    lock.lock();
    --busy_;
    finished_[job] = true;
    // Somebody waits for one job, or for the last one that runs.
    if (job == awaited_ || busy_ == 0) has_result_.notify_one();
  }
}

}  // namespace corvin::studio

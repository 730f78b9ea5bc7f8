// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A binary gate between two threads: one closes it (waiting until it is open), usually another one
// opens it again. Waits are untimed and sleep. Not a mutex: it has no owner.

#ifndef CORVIN_CLASSIC_FOUNDATION_GATE_H_
#define CORVIN_CLASSIC_FOUNDATION_GATE_H_

#include <condition_variable>
#include <mutex>

class Gate {
 public:
  /// Puts the gate into its first state. Nobody may be waiting.
  void Reset(bool open) {
    const std::lock_guard lock(mutex_);
    open_ = open;
    broken_ = false;
  }

  /// Waits until the gate is open and leaves it closed.
  void Close() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return open_ || broken_; });
    open_ = false;
  }

  /// Opens the gate; never waits. Opening an open gate changes nothing.
  void Open() {
    {
      const std::lock_guard lock(mutex_);
      open_ = true;
    }
    changed_.notify_one();
  }

  /// Lets every present and future Close() through, until Reset().
  void Break() {
    {
      const std::lock_guard lock(mutex_);
      broken_ = true;
    }
    changed_.notify_all();
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool open_ = false;
  bool broken_ = false;
};

#endif  // CORVIN_CLASSIC_FOUNDATION_GATE_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What several jobs have to say, in the order of the jobs: one that is through before those ahead of it
// leaves its words here until they are through as well.

#ifndef CORVIN_CLI_BATCH_IN_ORDER_H_
#define CORVIN_CLI_BATCH_IN_ORDER_H_

#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace corvin::cli {

class InOrder {
 public:
  /** @param say  gets the words of each job; called by one thread at a time */
  InOrder(size_t jobs, std::function<void(const std::string&)> say)
      : say_(std::move(say)), words_(jobs), is_through_(jobs, false) {}

  /** Takes a job's words. Any thread. */
  void end(size_t job, std::string words) {
    const std::lock_guard lock(mutex_);
    words_[job] = std::move(words);
    is_through_[job] = true;
    for (; next_ < words_.size() && is_through_[next_]; ++next_) {
      say_(words_[next_]);
      words_[next_] = {};
    }
  }

 private:
  std::mutex mutex_;
  std::function<void(const std::string&)> say_;
  std::vector<std::string> words_;
  std::vector<bool> is_through_;
  size_t next_ = 0;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_BATCH_IN_ORDER_H_

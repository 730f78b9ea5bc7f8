// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Calls side by side, each in a thread of its own.

#ifndef CORVIN_TESTS_SUPPORT_AT_ONCE_H_
#define CORVIN_TESTS_SUPPORT_AT_ONCE_H_

#include <functional>
#include <future>
#include <vector>

namespace corvin::testing {

/// The results in the order of the calls.
template <class Result>
std::vector<Result> AtOnce(const std::vector<std::function<Result()>>& calls) {
  std::vector<std::future<Result>> running;
  for (const auto& call : calls) running.push_back(std::async(std::launch::async, call));
  std::vector<Result> results;
  for (auto& result : running) results.push_back(result.get());
  return results;
}

}  // namespace corvin::testing

#endif  // CORVIN_TESTS_SUPPORT_AT_ONCE_H_

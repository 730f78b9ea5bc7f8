// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <thread>

#include "corvin.h"

namespace {

TEST(Platform, WorkersShareTheProcessors) {
  const unsigned processors = GetCPU_GPU_Cores(1);
  EXPECT_GE(processors, 1u);
  EXPECT_EQ(GetCPU_GPU_Cores(static_cast<int>(processors)), 1u);
  EXPECT_EQ(GetCPU_GPU_Cores(std::numeric_limits<int>::max()), 1u);
  for (int absurd : {0, -1, std::numeric_limits<int>::min()})
    EXPECT_EQ(GetCPU_GPU_Cores(absurd), 1u);
}

TEST(Platform, WaitsAsLongAsAsked) {
  const auto waited = [](float seconds) {
    const auto start = std::chrono::steady_clock::now();
    ProgressWaitNS(seconds);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  };
  EXPECT_GE(waited(0.05f), 0.049);
  // Would never come back if it were taken at its word.
  EXPECT_LT(waited(-1.0f), 10.0);
  EXPECT_LT(waited(std::numeric_limits<float>::quiet_NaN()), 10.0);
}

}  // namespace

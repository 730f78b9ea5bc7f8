// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The encoder's promise not to allocate on the caller's thread once it is made.

#include <gtest/gtest.h>

#include "tests/studio_encode/streams.h"
#include "tests/support/allocation_count.h"

namespace corvin::studio {
namespace {

TEST(EncoderRealTime, NothingIsAllocatedAfterCreation) {
  for (std::uint32_t grade : {CORVIN_MODULATOR_STANDARD, CORVIN_MODULATOR_BEST}) {
    EncoderSettings settings;
    settings.channels = 3;
    settings.block_bytes = 64;
    settings.modulator = grade;
    settings.low_latency = 1;
    Encoder encoder(settings);
    const Bytes data(3 * 3 * 4000, 3);
    Bytes out(100000);
    const std::size_t before = allocations;
    for (int round = 0; round < 2; ++round) {
      encoder.push(data.data(), 4000);
      encoder.pull(out);
      encoder.finish();
      while (encoder.pull(out) > 0) continue;
      encoder.report();
      encoder.reset();
    }
    EXPECT_EQ(allocations, before);
  }
}

}  // namespace
}  // namespace corvin::studio

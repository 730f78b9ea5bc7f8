// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The decoder's promise not to allocate on the caller's thread once it is made.

#include <gtest/gtest.h>

#include "tests/studio/streams.h"
#include "tests/support/allocation_count.h"

namespace corvin::studio {
namespace {

TEST(DecoderRealTime, NothingIsAllocatedAfterCreation) {
  DecoderSettings settings;
  settings.channels = 3;
  settings.block_bytes = 64;
  Decoder decoder(settings);
  const Bytes data(40000, 0x69);
  Bytes out(3 * 3 * 5000);
  const std::size_t before = allocations;
  for (int round = 0; round < 2; ++round) {
    for (int i = 0; i < 20; ++i) {
      decoder.push(data);
      decoder.pull(out.data(), 5000);
    }
    decoder.finish();
    while (decoder.pull(out.data(), 5000) > 0) continue;
    decoder.reset();
  }
  EXPECT_EQ(allocations, before);
}

}  // namespace
}  // namespace corvin::studio

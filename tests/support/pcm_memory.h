// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// PCM in memory behind a host's callback, which can be told to fail.

#ifndef CORVIN_TESTS_SUPPORT_PCM_MEMORY_H_
#define CORVIN_TESTS_SUPPORT_PCM_MEMORY_H_

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

#include "corvin.h"
#include "tests/support/studio_streams.h"

namespace corvin::studio {

struct Pcm {
  Bytes data;
  std::size_t frame_bytes;
  std::size_t position = 0;
  std::size_t most_at_once = std::numeric_limits<std::size_t>::max();
  int calls_left = std::numeric_limits<int>::max();  ///< until reads fail

  corvin_pcm_source source(std::uint32_t rate, std::uint32_t channels, std::uint32_t format) {
    corvin_pcm_source source = {};
    source.size = sizeof source;
    source.pcm_rate = rate;
    source.channels = channels;
    source.format = format;
    source.frames = data.size() / frame_bytes;
    source.user = this;
    source.read = [](void* user, void* frames, std::size_t count) -> std::int64_t {
      Pcm& self = *static_cast<Pcm*>(user);
      if (self.calls_left-- <= 0) return -1;
      count = std::min(
          {count, self.most_at_once, (self.data.size() - self.position) / self.frame_bytes});
      const std::size_t bytes = count * self.frame_bytes;
      if (bytes > 0) std::memcpy(frames, &self.data[self.position], bytes);
      self.position += bytes;
      return static_cast<std::int64_t>(count);
    };
    return source;
  }
};

}  // namespace corvin::studio

#endif  // CORVIN_TESTS_SUPPORT_PCM_MEMORY_H_

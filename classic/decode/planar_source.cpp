// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "classic/decode/planar_source.h"

#include <algorithm>
#include <cstddef>

PlanarSource::PlanarSource(CorvinReadCallback read, void* data, int bytes_per_half)
    : read_(read), data_(data), delivery_(2 * static_cast<std::size_t>(bytes_per_half)) {}

int PlanarSource::Read(void* buffer, int size, void* self) {
  return static_cast<PlanarSource*>(self)->Interleave(static_cast<char*>(buffer), size);
}

int PlanarSource::Interleave(char* to, int size) {
  const int room = static_cast<int>(delivery_.size());
  while (at_ == half_) {
    const int count = read_(delivery_.data(), room, data_);
    if (count < 1) return 0;
    half_ = std::min(count, room) / 2;
    at_ = 0;
  }
  const int count = std::min(size / 2, half_ - at_);
  for (int i = 0; i < count; ++i) {
    *to++ = delivery_[static_cast<std::size_t>(at_ + i)];
    *to++ = delivery_[static_cast<std::size_t>(half_ + at_ + i)];
  }
  at_ += count;
  return 2 * count;
}

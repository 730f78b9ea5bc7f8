// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Brings a stereo source whose callback delivers the channels one behind the other into the order
// of the pipeline, one byte per channel in turn. Where a delivery's halves meet is known only here:
// behind the callback deliveries of any size make up the blocks.

#ifndef CORVIN_CLASSIC_DECODE_PLANAR_SOURCE_H_
#define CORVIN_CLASSIC_DECODE_PLANAR_SOURCE_H_

#include <vector>

#include "corvin.h"

class PlanarSource {
 public:
  /// @param read            fills its buffer with the left channel's bytes, then as many of the
  ///                        right's; a last odd byte is dropped
  /// @param bytes_per_half  `read` is always asked for twice as much
  PlanarSource(CorvinReadCallback read, void* data, int bytes_per_half);

  /// A read callback whose data is a PlanarSource. `size` is even.
  static int Read(void* buffer, int size, void* self);

 private:
  int Interleave(char* to, int size);

  CorvinReadCallback read_;
  void* data_;
  std::vector<char> delivery_;
  int half_ = 0;  ///< bytes of each channel in the delivery
  int at_ = 0;    ///< of them given out
};

#endif  // CORVIN_CLASSIC_DECODE_PLANAR_SOURCE_H_

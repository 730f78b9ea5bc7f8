// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The pieces that a conversion cuts its stream into. A piece covers the same stretch of each channel
// and consists of work items, which the first stage of a plan makes several of side by side. An
// item reads two overlapping spans, so neighbouring items, and neighbouring pieces, share what
// they read.

#ifndef CORVIN_STUDIO_STREAM_PIECE_SHAPE_H_
#define CORVIN_STUDIO_STREAM_PIECE_SHAPE_H_

#include <algorithm>
#include <cstddef>
#include <numeric>

#include "studio/math/aligned_array.h"

namespace corvin::studio {

/// Items that the widest build of a kernel runs side by side.
inline constexpr std::size_t kWidestVector = 8;

/// What a plan says of the spans of one channel.
struct SpanShape {
  std::size_t size = 0;  ///< elements that a span reads
  std::size_t hop = 0;   ///< from a span to the next one
  std::size_t lead = 0;  ///< silent elements before the stream's first
  std::size_t out = 0;   ///< that an item makes
};

/// Counts are of one channel: of `In` for what is read, and of whatever the stages make.
template <typename In>
struct PieceShape {
  std::size_t channels;
  std::size_t items;
  std::size_t in;         ///< that a piece reads, those shared with the piece before included
  std::size_t in_step;    ///< from an item to the next one
  std::size_t in_stride;  ///< from a channel to the next one, aligned for the kernels
  std::size_t lead;       ///< silent ones before the stream's first
  std::size_t shared;     ///< with the piece before
  std::size_t out;        ///< that a piece makes
  std::size_t delay = 0;  ///< of what is made: comes out with a later piece

  PieceShape(const SpanShape& spans, std::size_t channel_count, bool low_latency)
      : channels(channel_count),
        // As many as make whole vectors of every width with this number of channels, so that a
        // piece is the same on every processor.
        items(low_latency ? 1 : kWidestVector / std::gcd(kWidestVector, channels)),
        in((2 * items - 1) * spans.hop + spans.size),
        in_step(2 * spans.hop),
        in_stride((in + kGrain - 1) / kGrain * kGrain),
        lead(spans.lead),
        shared(spans.size - spans.hop),
        out(items * spans.out) {}

  /// Has all items of a piece made: run(in, out, count) makes `count` of them, at most `width`.
  /// @param from  from[channels][in_stride]
  /// @param to    to[channels][out]
  template <typename Run>
  void make(const In* from, double* to, std::size_t width, Run run) const {
    const std::size_t all = channels * items;
    const In* in_places[kWidestVector];
    double* out_places[kWidestVector];
    width = std::min(width, kWidestVector);
    for (std::size_t item = 0; item < all;) {
      std::size_t count = 0;
      for (; count < width && item < all; ++count, ++item) {
        const std::size_t channel = item / items;
        const std::size_t place = item % items;
        in_places[count] = from + channel * in_stride + place * in_step;
        out_places[count] = to + channel * out + place * (out / items);
      }
      run(in_places, out_places, count);
    }
  }

 private:
  static constexpr std::size_t kGrain = kKernelAlignment / sizeof(In);
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_STREAM_PIECE_SHAPE_H_

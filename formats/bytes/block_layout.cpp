// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "formats/bytes/block_layout.h"

#include <cstring>

#include "formats/bytes/bit_order.h"

namespace corvin::formats {
namespace {

// One of two interleaved channels, in pieces of fixed size for the compiler's vectors. Returns how
// many bytes that were.
std::size_t CopyEverySecond(const std::uint8_t* in, std::uint8_t* out, std::size_t bytes) {
  constexpr std::size_t kPiece = 32;
  std::size_t done = 0;
  for (; done + kPiece <= bytes; done += kPiece) {
    std::uint8_t piece[kPiece];
    for (std::size_t i = 0; i < kPiece; ++i) piece[i] = in[2 * (done + i)];
    std::memcpy(out + done, piece, kPiece);
  }
  return done;
}

}  // namespace

void CopyBytes(const std::uint8_t* in, std::size_t in_stride, std::uint8_t* out,
               std::size_t out_stride, std::size_t bytes, bool reverse) {
  if (reverse) {
    for (std::size_t i = 0; i < bytes; ++i) out[i * out_stride] = kReversedBits[in[i * in_stride]];
    return;
  }
  if (in_stride == 1 && out_stride == 1) {
    std::memcpy(out, in, bytes);
    return;
  }
  const bool is_stereo = in_stride == 2 && out_stride == 1;
  for (std::size_t i = is_stereo ? CopyEverySecond(in, out, bytes) : 0; i < bytes; ++i)
    out[i * out_stride] = in[i * in_stride];
}

}  // namespace corvin::formats

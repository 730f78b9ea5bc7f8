// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// One loop per width and byte order.

#include "classic/decode/quantise.h"

#include <algorithm>
#include <cstdint>

namespace {

template <int kBytes, bool kBigEndian>
void Store(std::int32_t value, char* out) {
  for (int i = 0; i < kBytes; ++i)
    out[kBigEndian ? kBytes - 1 - i : i] =
        static_cast<char>(static_cast<std::uint32_t>(value) >> 8 * i);
}

/// `Scale` is float or double, the precision of the product.
template <int kBytes, bool kBigEndian, class Scale>
void Run(const float* in, std::size_t count, Scale full, std::size_t stride, char* out) {
  for (std::size_t i = 0; i < count; ++i) {
    const double clipped = std::clamp(static_cast<double>(in[i]), -1.0, 1.0);
    const auto value = static_cast<std::int32_t>(static_cast<Scale>(clipped) * full);
    Store<kBytes, kBigEndian>(value, out + i * stride * kBytes);
  }
}

template <bool kBigEndian>
void RunWidth(const float* in, std::size_t count, int bits, NarrowScale narrow, std::size_t stride,
              char* out) {
  const bool single = narrow == NarrowScale::kSingle;
  switch (bits) {
    case 16:
      return single ? Run<2, kBigEndian>(in, count, 32767.0f, stride, out)
                    : Run<2, kBigEndian>(in, count, 32767.0, stride, out);
    case 24:
      return Run<3, kBigEndian>(in, count, 8388607.0, stride, out);
    case 32:
      return Run<4, kBigEndian>(in, count, 2147483647.0, stride, out);
    default:  // A power of two: both precisions agree.
      return Run<1, kBigEndian>(in, count, 128.0f, stride, out);
  }
}

}  // namespace

void Quantise(const float* in, std::size_t count, int bits, bool bigEndian, NarrowScale narrow,
              std::size_t stride, char* out) {
  if (bigEndian)
    RunWidth<true>(in, count, bits, narrow, stride, out);
  else
    RunWidth<false>(in, count, bits, narrow, stride, out);
}

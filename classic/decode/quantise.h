// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Floats to signed integer samples of 8 to 32 bits in either byte order, by clipping and truncation
// toward zero.

#ifndef CORVIN_CLASSIC_DECODE_QUANTISE_H_
#define CORVIN_CLASSIC_DECODE_QUANTISE_H_

#include <cstddef>

/// In which precision 16 and 8 bit samples are scaled. The two filter paths differ here, and with
/// them the last bit of some samples: kept, since hosts compare files. Wider samples are always
/// scaled in double precision.
enum class NarrowScale { kSingle, kDouble };

/// Writes `count` samples, `stride` samples apart.
/// @param bits  16, 24 or 32; any other value writes one byte, in which +1.0 wraps to -128
void Quantise(const float* in, std::size_t count, int bits, bool bigEndian, NarrowScale narrow,
              std::size_t stride, char* out);

#endif  // CORVIN_CLASSIC_DECODE_QUANTISE_H_

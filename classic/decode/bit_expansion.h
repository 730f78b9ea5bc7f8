// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// DSD bits to floats of +1.0 and -1.0, eight for each byte.

#ifndef CORVIN_CLASSIC_DECODE_BIT_EXPANSION_H_
#define CORVIN_CLASSIC_DECODE_BIT_EXPANSION_H_

#include <cstddef>

/// Writes 8 x `count` floats.
/// @param bytes     the channel's bytes, `stride` apart
/// @param lsbFirst  the earliest sample is in the least significant bit
void ExpandBits(const char* bytes, std::size_t stride, std::size_t count, bool lsbFirst,
                float* out);

#endif  // CORVIN_CLASSIC_DECODE_BIT_EXPANSION_H_

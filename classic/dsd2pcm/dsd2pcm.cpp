// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Decimates DSD by eight, one channel, one byte to one float, for hosts that convert on the fly.
// A table per eight taps gives their sum over the eight bits of a byte. The filter is symmetric:
// the older half of the ring is held bit-reversed, so that the same tables serve both halves.

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "classic/dsd2pcm/taps.h"
#include "corvin.h"
#include "formats/bytes/bit_order.h"

/// One channel's past.
struct dsd2pcm_state {
  std::uint8_t fifo[16];  ///< ring of the last bytes; those more than six back bit-reversed
  std::uint32_t fifopos;  ///< slot of the next byte, 0..15
};

namespace corvin::dsd2pcm {
namespace {

constexpr int kTables = 6;  // of eight taps each, for one half of the filter
constexpr std::uint32_t kRingMask = 15;

using Tables = std::array<std::array<float, 256>, kTables>;

constexpr Tables MakeTables() {
  Tables tables{};
  for (int t = 0; t < kTables; ++t) {
    for (unsigned k = 0; k < 256; ++k) {
      double sum = 0;
      for (int j = 0; j < 8; ++j) {
        const double tap = htaps[static_cast<std::size_t>(8 * t + j)];
        sum += k >> (7 - j) & 1 ? tap : -tap;
      }
      tables[static_cast<std::size_t>(kTables - 1 - t)][k] = static_cast<float>(sum);
    }
  }
  return tables;
}

// Made by the compiler: the first converters may be created by several threads at once.
constexpr Tables ctables = MakeTables();

}  // namespace
}  // namespace corvin::dsd2pcm

using namespace corvin::dsd2pcm;
using corvin::formats::kReversedBits;

extern "C" {

dsd2pcm_state* dsd2pcm_init(void) {
  auto* state = static_cast<dsd2pcm_state*>(std::malloc(sizeof(dsd2pcm_state)));
  if (state != nullptr) dsd2pcm_reset(state);
  return state;
}

void dsd2pcm_reset(dsd2pcm_state* state) {
  if (state == nullptr) return;
  // The whole ring alike: the older half is not reversed here, which is heard for the first bytes.
  std::memset(state->fifo, corvin::formats::kSilence, sizeof state->fifo);
  state->fifopos = 0;
}

dsd2pcm_state* dsd2pcm_clone(const dsd2pcm_state* state) {
  if (state == nullptr) return nullptr;
  auto* copy = static_cast<dsd2pcm_state*>(std::malloc(sizeof(dsd2pcm_state)));
  if (copy != nullptr) *copy = *state;
  return copy;
}

void dsd2pcm_destroy(dsd2pcm_state* state) { std::free(state); }

void dsd2pcm_translate(dsd2pcm_state* state, size_t samples, const unsigned char* src,
                       ptrdiff_t src_stride, int lsbfirst, float* dst, ptrdiff_t dst_stride) {
  if (state == nullptr || src == nullptr || dst == nullptr) return;
  dsd2pcm_state ring = *state;  // a copy that `dst` cannot alias
  std::uint32_t p = ring.fifopos;
  const auto at = [&ring](std::uint32_t position) -> std::uint8_t& {
    return ring.fifo[position & kRingMask];
  };
  for (std::size_t n = 0; n < samples; ++n) {
    // Addressed by index: a step behind the last element would point outside the caller's array.
    const auto index = static_cast<std::ptrdiff_t>(n);
    const unsigned char byte = src[index * src_stride];
    at(p) = lsbfirst != 0 ? kReversedBits[byte] : byte;
    at(p - 6) = kReversedBits[at(p - 6)];
    // Pairs in single, their sum in double precision: part of the result.
    double sum = 0;
    for (std::uint32_t i = 0; i < kTables; ++i) {
      sum += ctables[i][at(p - i)] + ctables[i][at(p - 11 + i)];
    }
    dst[index * dst_stride] = static_cast<float>(sum);
    p = (p + 1) & kRingMask;
  }
  ring.fifopos = p;
  *state = ring;
}

}  // extern "C"

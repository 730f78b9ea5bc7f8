// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// One table look-up and a 32-byte copy for each byte.

#include "classic/decode/bit_expansion.h"

#include <array>
#include <cstring>

namespace {

using Octet = std::array<float, 8>;

constexpr std::array<Octet, 256> MakeTable(bool lsb_first) {
  std::array<Octet, 256> table{};
  for (unsigned byte = 0; byte < 256; ++byte)
    for (unsigned i = 0; i < 8; ++i)
      table[byte][i] = (byte >> (lsb_first ? i : 7 - i) & 1) != 0 ? 1.0f : -1.0f;
  return table;
}

alignas(32) constexpr std::array<Octet, 256> kMsbFirst = MakeTable(false);
alignas(32) constexpr std::array<Octet, 256> kLsbFirst = MakeTable(true);

}  // namespace

void ExpandBits(const char* bytes, std::size_t stride, std::size_t count, bool lsbFirst,
                float* out) {
  const auto& table = lsbFirst ? kLsbFirst : kMsbFirst;
  for (std::size_t i = 0; i < count; ++i)
    std::memcpy(out + 8 * i, &table[static_cast<unsigned char>(bytes[i * stride])], sizeof(Octet));
}

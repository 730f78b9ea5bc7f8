// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/md5.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace corvin::cli {
namespace {

// The table T of the RFC: the first 32 bits of |sin(i + 1)|. Doubles hold them with 20 bits to
// spare, so any library's sine gives the same.
std::array<uint32_t, 64> make_sines() {
  std::array<uint32_t, 64> sines{};
  for (size_t i = 0; i < sines.size(); ++i)
    sines[i] = static_cast<uint32_t>(std::abs(std::sin(static_cast<double>(i + 1))) * 4294967296.0);
  return sines;
}

constexpr int kTurns[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

}  // namespace

void Md5::add(std::span<const uint8_t> bytes) {
  size_t held = bytes_ % rest_.size();
  bytes_ += bytes.size();
  while (held + bytes.size() >= rest_.size()) {
    const size_t taken = rest_.size() - held;
    if (held == 0) {
      take_block(bytes.data());
    } else {
      std::copy_n(bytes.begin(), taken, rest_.begin() + static_cast<std::ptrdiff_t>(held));
      take_block(rest_.data());
    }
    bytes = bytes.subspan(taken);
    held = 0;
  }
  std::copy(bytes.begin(), bytes.end(), rest_.begin() + static_cast<std::ptrdiff_t>(held));
}

std::array<uint8_t, 16> Md5::finish() {
  const uint64_t bits = 8 * bytes_;
  constexpr std::array<uint8_t, 64> kPadding = {0x80};
  const size_t held = bytes_ % 64;
  add(std::span(kPadding).first(held < 56 ? 56 - held : 120 - held));
  std::array<uint8_t, 8> length{};
  for (size_t i = 0; i < length.size(); ++i) length[i] = static_cast<uint8_t>(bits >> (8 * i));
  add(length);
  std::array<uint8_t, 16> sum{};
  for (size_t i = 0; i < sum.size(); ++i)
    sum[i] = static_cast<uint8_t>(state_[i / 4] >> (8 * (i % 4)));
  return sum;
}

void Md5::take_block(const uint8_t* block) {
  static const std::array<uint32_t, 64> kSines = make_sines();
  std::array<uint32_t, 16> words{};
  for (size_t i = 0; i < 64; ++i) words[i / 4] |= static_cast<uint32_t>(block[i]) << (8 * (i % 4));
  auto [a, b, c, d] = state_;
  for (size_t i = 0; i < 64; ++i) {
    uint32_t mixed = 0;
    size_t word = 0;
    switch (i / 16) {
      case 0:
        mixed = (b & c) | (~b & d);
        word = i;
        break;
      case 1:
        mixed = (d & b) | (~d & c);
        word = (5 * i + 1) % 16;
        break;
      case 2:
        mixed = b ^ c ^ d;
        word = (3 * i + 5) % 16;
        break;
      default:
        mixed = c ^ (b | ~d);
        word = (7 * i) % 16;
    }
    const uint32_t turned = std::rotl(a + mixed + kSines[i] + words[word], kTurns[i / 16][i % 4]);
    a = d;
    d = c;
    c = b;
    b += turned;
  }
  state_ = {state_[0] + a, state_[1] + b, state_[2] + c, state_[3] + d};
}

}  // namespace corvin::cli

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Builds ID3v2 blocks in memory. Sizes may lie.

#ifndef CORVIN_TESTS_SUPPORT_ID3_BLOCKS_H_
#define CORVIN_TESTS_SUPPORT_ID3_BLOCKS_H_

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include "tests/support/dsd_files.h"

namespace corvin::testing {

/// A string that may hold zero bytes: Raw("\0a") is two bytes.
template <std::size_t N>
std::string Raw(const char (&text)[N]) {
  return std::string(text, N - 1);
}

inline Bytes Id3Frame(std::string_view id, std::string_view body,
                      std::optional<std::uint32_t> size = {}) {
  Bytes frame;
  Append(frame, id);
  AppendBig(frame, size.value_or(static_cast<std::uint32_t>(body.size())), 4);
  AppendBig(frame, 0, 2);
  return Append(frame, body);
}

/// A frame that holds a text in UTF-8.
inline Bytes Id3Text(std::string_view id, const std::string& text) {
  return Id3Frame(id, "\3" + text);
}

inline Bytes Id3Block(std::initializer_list<Bytes> frames, std::optional<std::uint32_t> size = {},
                      std::uint8_t version = 3) {
  Bytes body;
  for (const Bytes& frame : frames) Append(body, frame);
  Bytes block;
  Append(block, "ID3");
  Append(block, Bytes{version, 0, 0});
  const auto stated = size.value_or(static_cast<std::uint32_t>(body.size()));
  for (int shift = 21; shift >= 0; shift -= 7) {
    block.push_back(static_cast<std::uint8_t>(stated >> shift & 0x7f));
  }
  return Append(block, body);
}

}  // namespace corvin::testing

#endif  // CORVIN_TESTS_SUPPORT_ID3_BLOCKS_H_

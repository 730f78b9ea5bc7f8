// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/words/unicode_text.h"

#include <cstdint>
#include <optional>

namespace corvin::cli {
namespace {

// No value: not UTF-8 by the strict rules, which exclude overlong forms and surrogates.
std::optional<std::u32string> decode_utf8(std::string_view text) {
  std::u32string points;
  for (size_t i = 0; i < text.size();) {
    const auto lead = static_cast<uint8_t>(text[i++]);
    const int more = lead < 0x80 ? 0 : lead < 0xc2 ? -1 : lead < 0xe0 ? 1 : lead < 0xf0 ? 2 : 3;
    if (more < 0 || lead > 0xf4) return {};
    char32_t point = more == 0 ? lead : lead & (0x3fu >> more);
    for (int k = 0; k < more; ++k, ++i) {
      if (i == text.size() || (static_cast<uint8_t>(text[i]) & 0xc0) != 0x80) return {};
      point = point << 6 | (static_cast<uint8_t>(text[i]) & 0x3fu);
    }
    constexpr char32_t kLeast[] = {0, 0x80, 0x800, 0x10000};
    if (point < kLeast[more] || point > 0x10ffff || (point >= 0xd800 && point < 0xe000)) return {};
    points += point;
  }
  return points;
}

std::u32string decode(std::string_view text) {
  if (auto points = decode_utf8(text)) return *points;
  std::u32string points;
  for (const char c : text) points += static_cast<uint8_t>(c);
  return points;
}

void append_utf8(std::string& text, char32_t point) {
  const int more = point < 0x80 ? 0 : point < 0x800 ? 1 : point < 0x10000 ? 2 : 3;
  constexpr uint8_t kLead[] = {0, 0xc0, 0xe0, 0xf0};
  text += static_cast<char>(kLead[more] | point >> 6 * more);
  for (int k = more - 1; k >= 0; --k) text += static_cast<char>(0x80 | (point >> 6 * k & 0x3f));
}

// The second block steers some terminals as the first does all.
bool is_control(char32_t point) { return point < 0x20 || (point >= 0x7f && point < 0xa0); }

}  // namespace

std::string printable(std::string_view text) {
  std::string result;
  for (const char32_t point : decode(text)) {
    const bool is_space = point == '\t' || point == '\n' || point == '\r';
    append_utf8(result, is_space ? U' ' : is_control(point) ? U'?' : point);
  }
  return result;
}

std::string utf8_of(std::string_view text) {
  std::string result;
  for (const char32_t point : decode(text)) append_utf8(result, point);
  return result;
}

}  // namespace corvin::cli

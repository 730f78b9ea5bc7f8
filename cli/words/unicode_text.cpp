// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/words/unicode_text.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>
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

struct Range {
  char32_t first, last;
};

// What a terminal obeys, or shows nothing of: with these a name can pass for another one. Ascending.
constexpr Range kUnprintable[] = {
    {0x0000, 0x001f},    // controls
    {0x007f, 0x009f},    // more of them, which steer some terminals as the first do all
    {0x00ad, 0x00ad},    // soft hyphen
    {0x034f, 0x034f},    // grapheme joiner
    {0x0600, 0x0605},    // format characters of Arabic
    {0x061c, 0x061c},    // its direction mark
    {0x06dd, 0x06dd},    //
    {0x070f, 0x070f},    // of Syriac
    {0x0890, 0x0891},    //
    {0x08e2, 0x08e2},    //
    {0x115f, 0x1160},    // fillers of Hangul
    {0x17b4, 0x17b5},    // vowels of Khmer without a shape
    {0x180e, 0x180e},    // of Mongolian
    {0x200b, 0x200f},    // zero width, direction marks
    {0x2028, 0x202e},    // ends of lines and paragraphs, directions and overrides
    {0x2060, 0x206f},    // joiners, invisible operators, isolates
    {0x3164, 0x3164},    // fillers of Hangul
    {0xfeff, 0xfeff},    // byte order mark
    {0xffa0, 0xffa0},    //
    {0xfff0, 0xfffb},    // annotations
    {0x110bd, 0x110bd},  // of Kaithi
    {0x110cd, 0x110cd},  //
    {0x13430, 0x1343f},  // of hieroglyphs
    {0x1bca0, 0x1bca3},  // of shorthand
    {0x1d173, 0x1d17a},  // of musical notation
    {0xe0000, 0xe007f},  // tags
};

bool is_printable(char32_t point) {
  const auto* range =
      std::lower_bound(std::begin(kUnprintable), std::end(kUnprintable), point,
                       [](const Range& one, char32_t value) { return one.last < value; });
  return range == std::end(kUnprintable) || point < range->first;
}

bool breaks_line(char32_t point) {
  return (point >= '\t' && point <= '\r') || point == 0x85 || point == 0x2028 || point == 0x2029;
}

void append_json_escape(std::string& text, char32_t point) {
  char escape[16];
  if (point < 0x10000) {
    std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(point));
  } else {
    const auto pair = static_cast<unsigned>(point - 0x10000);
    std::snprintf(escape, sizeof escape, "\\u%04x\\u%04x", 0xd800 + (pair >> 10),
                  0xdc00 + (pair & 0x3ff));
  }
  text += escape;
}

}  // namespace

std::string printable(std::string_view text) {
  std::string result;
  for (const char32_t point : decode(text))
    append_utf8(result, breaks_line(point) ? U' ' : is_printable(point) ? point : U'?');
  return result;
}

std::string on_one_line(std::string_view text) {
  std::string result;
  for (const char c : text) {
    const auto byte = static_cast<uint8_t>(c);
    result += byte < 0x80 && breaks_line(byte) ? ' ' : byte < 0x20 || byte == 0x7f ? '?' : c;
  }
  return result;
}

std::string printable_json(std::string_view json) {
  std::string result;
  for (const char32_t point : decode(json)) {
    if (point == '\n' || is_printable(point))
      append_utf8(result, point);
    else
      append_json_escape(result, point);
  }
  return result;
}

std::string utf8_of(std::string_view text) {
  std::string result;
  for (const char32_t point : decode(text)) append_utf8(result, point);
  return result;
}

}  // namespace corvin::cli

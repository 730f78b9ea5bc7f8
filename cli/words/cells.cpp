// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/words/cells.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace corvin::cli {
namespace {

struct Range {
  char32_t first, last;
};

// Blocks rather than characters: one counted too wide costs a cell of the line, one too narrow would
// wrap it.
constexpr Range kWide[] = {
    {0x1100, 0x115f},   {0x231a, 0x23ff},   {0x25fd, 0x27bf},   {0x2b1b, 0x2b55},
    {0x2e80, 0xa4cf},   {0xa960, 0xa97f},   {0xac00, 0xd7a3},   {0xf900, 0xfaff},
    {0xfe10, 0xfe19},   {0xfe30, 0xfe6f},   {0xff00, 0xff60},   {0xffe0, 0xffe6},
    {0x16fe0, 0x18dff}, {0x1aff0, 0x1b2ff}, {0x1f000, 0x1faff}, {0x20000, 0x3fffd},
};

// The marks that names with decomposed letters have.
constexpr Range kCombining[] = {{0x0300, 0x036f}, {0xfe00, 0xfe0f}};

template <size_t count>
bool is_in(const Range (&ranges)[count], char32_t point) {
  return std::any_of(ranges, ranges + count, [&](const Range& range) {
    return point >= range.first && point <= range.last;
  });
}

struct Character {
  size_t begin, end;  // its bytes, with the marks on it
  size_t cells;
};

std::vector<Character> characters_of(std::string_view text) {
  std::vector<Character> characters;
  for (size_t i = 0; i < text.size();) {
    const size_t begin = i;
    const auto lead = static_cast<uint8_t>(text[i++]);
    char32_t point = lead < 0x80 ? lead : lead & (lead < 0xe0 ? 0x1f : lead < 0xf0 ? 0x0f : 0x07);
    for (; i < text.size() && (static_cast<uint8_t>(text[i]) & 0xc0) == 0x80; ++i)
      point = point << 6 | (static_cast<uint8_t>(text[i]) & 0x3fu);
    if (is_in(kCombining, point) && !characters.empty())
      characters.back().end = i;
    else
      characters.push_back({begin, i, is_in(kWide, point) ? 2u : 1u});
  }
  return characters;
}

}  // namespace

size_t cells_of(std::string_view text) {
  size_t cells = 0;
  for (const Character& character : characters_of(text)) cells += character.cells;
  return cells;
}

std::string shortened(std::string_view text, size_t most) {
  constexpr std::string_view kGap = "...";
  if (cells_of(text) <= most) return std::string(text);
  if (most < kGap.size() + 2) return {};
  const std::vector<Character> characters = characters_of(text);
  const size_t room = most - kGap.size();
  // The end gets the larger half: names of an album differ there.
  size_t begin = 0, end = characters.size();
  for (size_t left = room / 2; begin < end && characters[begin].cells <= left; ++begin)
    left -= characters[begin].cells;
  for (size_t left = room - room / 2; end > begin && characters[end - 1].cells <= left; --end)
    left -= characters[end - 1].cells;
  std::string result(text.substr(0, begin == 0 ? 0 : characters[begin - 1].end));
  result += kGap;
  if (end < characters.size()) result += text.substr(characters[end].begin);
  return result;
}

}  // namespace corvin::cli

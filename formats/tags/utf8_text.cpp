// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "formats/tags/utf8_text.h"

namespace corvin::formats {
namespace {

constexpr char32_t kReplacement = 0xfffd;

bool IsSurrogate(char32_t point) { return point >= 0xd800 && point < 0xe000; }

void Append(std::string& text, char32_t point) {
  const int more = point < 0x80 ? 0 : point < 0x800 ? 1 : point < 0x10000 ? 2 : 3;
  constexpr std::uint8_t kLead[] = {0, 0xc0, 0xe0, 0xf0};
  text += static_cast<char>(kLead[more] | point >> 6 * more);
  for (int k = more - 1; k >= 0; --k) text += static_cast<char>(0x80 | (point >> 6 * k & 0x3f));
}

// Takes a character off the front of `text`; nothing when none stands there.
std::optional<char32_t> TakePoint(std::string_view& text) {
  const auto lead = static_cast<std::uint8_t>(text[0]);
  if (lead > 0xf4 || (lead >= 0x80 && lead < 0xc2)) return std::nullopt;
  const std::size_t more = lead < 0x80 ? 0 : lead < 0xe0 ? 1 : lead < 0xf0 ? 2 : 3;
  if (text.size() <= more) return std::nullopt;
  char32_t point = more == 0 ? lead : lead & (0x3fu >> more);
  for (std::size_t k = 1; k <= more; ++k) {
    const auto byte = static_cast<std::uint8_t>(text[k]);
    if ((byte & 0xc0) != 0x80) return std::nullopt;
    point = point << 6 | (byte & 0x3fu);
  }
  constexpr char32_t kLeast[] = {0, 0x80, 0x800, 0x10000};
  if (point < kLeast[more] || point > 0x10ffff || IsSurrogate(point)) return std::nullopt;
  text.remove_prefix(more + 1);
  return point;
}

std::string Utf8OfLatin1(std::string_view text) {
  std::string utf8;
  for (const char c : text) Append(utf8, static_cast<std::uint8_t>(c));
  return utf8;
}

std::string Utf8OfUtf16(ByteSpan bytes, bool big_endian) {
  const auto unit = [&](std::size_t at) -> char32_t {
    const std::uint8_t high = bytes[big_endian ? at : at + 1];
    const std::uint8_t low = bytes[big_endian ? at + 1 : at];
    return static_cast<char32_t>(high << 8 | low);
  };
  std::string utf8;
  for (std::size_t at = 0; at + 2 <= bytes.size(); at += 2) {
    char32_t point = unit(at);
    if (IsSurrogate(point)) {
      const char32_t second = at + 4 <= bytes.size() ? unit(at + 2) : 0;
      const bool is_pair = point < 0xdc00 && second >= 0xdc00 && second < 0xe000;
      point = is_pair ? 0x10000 + (point - 0xd800) * 0x400 + (second - 0xdc00) : kReplacement;
      if (is_pair) at += 2;
    }
    Append(utf8, point);
  }
  return utf8;
}

// Takes a mark off the front; nothing when there is none. True: big-endian.
std::optional<bool> TakeMark(ByteSpan& text) {
  if (text.size() < 2) return std::nullopt;
  const bool little = text[0] == 0xff && text[1] == 0xfe;
  if (!little && !(text[0] == 0xfe && text[1] == 0xff)) return std::nullopt;
  text = text.subspan(2);
  return !little;
}

}  // namespace

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    if (!TakePoint(text)) return false;
  }
  return true;
}

std::string Utf8OfUnknown(std::string_view text) {
  return IsUtf8(text) ? std::string(text) : Utf8OfLatin1(text);
}

std::optional<std::string> Latin1Of(std::string_view utf8) {
  std::string latin1;
  while (!utf8.empty()) {
    const auto point = TakePoint(utf8);
    if (!point || *point > 0xff) return std::nullopt;
    latin1 += static_cast<char>(*point);
  }
  return latin1;
}

std::string Utf16Of(std::string_view utf8) {
  std::string text = "\xff\xfe";
  const auto put = [&](char32_t unit) {
    text += static_cast<char>(unit & 0xff);
    text += static_cast<char>(unit >> 8);
  };
  while (!utf8.empty()) {
    const auto taken = TakePoint(utf8);
    if (!taken) utf8.remove_prefix(1);
    const char32_t point = taken.value_or(kReplacement);
    if (point < 0x10000) {
      put(point);
    } else {
      put(0xd800 + ((point - 0x10000) >> 10));
      put(0xdc00 + ((point - 0x10000) & 0x3ff));
    }
  }
  return text;
}

std::string TextReader::Next() {
  ByteSpan text = bytes_;
  const auto terminated = TakeTerminatedText(encoding_, bytes_);
  was_terminated_ = terminated.has_value();
  if (terminated) {
    text = *terminated;
  } else {
    bytes_ = {};
  }
  if (encoding_ == TextEncoding::kUtf16 || encoding_ == TextEncoding::kUtf16BigEndian) {
    if (const auto mark = TakeMark(text)) big_endian_ = *mark;
    return Utf8OfUtf16(text, big_endian_);
  }
  const std::string_view plain(reinterpret_cast<const char*>(text.data()), text.size());
  return encoding_ == TextEncoding::kUtf8 ? Utf8OfUnknown(plain) : Utf8OfLatin1(plain);
}

}  // namespace corvin::formats

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "formats/tags/tag_text.h"

#include <algorithm>
#include <cstring>

#include "corvin.h"

#if defined(__APPLE__)
#include <CoreFoundation/CoreFoundation.h>
#else
#include <iconv.h>

#include <cerrno>
#endif

namespace corvin::formats {
namespace {

bool IsUtf16(TextEncoding encoding) {
  return encoding == TextEncoding::kUtf16 || encoding == TextEncoding::kUtf16BigEndian;
}

/// Bytes before the terminator, or all of them.
std::size_t TextBytes(TextEncoding encoding, ByteSpan bytes) {
  if (!IsUtf16(encoding)) {
    return static_cast<std::size_t>(std::find(bytes.begin(), bytes.end(), 0) - bytes.begin());
  }
  std::size_t at = 0;
  while (at + 2 <= bytes.size() && (bytes[at] != 0 || bytes[at + 1] != 0)) at += 2;
  return at;  // an odd last byte is no character
}

/// Where to cut a longer UTF-8 text so that at most `capacity` bytes are left.
std::size_t Utf8Cut(ByteSpan text, std::size_t capacity) {
  const auto continues = [&](std::size_t at) { return (text[at] & 0xc0) == 0x80; };
  for (std::size_t cut = capacity; cut > 0 && capacity - cut < 4; --cut) {
    if (!continues(cut)) return cut;
  }
  return capacity;  // no UTF-8 anyway
}

#if defined(__APPLE__)

void StoreUtf16(bool big_endian, ByteSpan units, std::span<char> field) {
  const CFStringRef string = CFStringCreateWithBytes(
      nullptr, units.data(), static_cast<CFIndex>(units.size()),
      big_endian ? kCFStringEncodingUTF16BE : kCFStringEncodingUTF16LE, false);
  if (string == nullptr) return;
  // Stops between two characters when the field is full.
  CFStringGetBytes(string, CFRangeMake(0, CFStringGetLength(string)), kCFStringEncodingUTF8, '?',
                   false, reinterpret_cast<UInt8*>(field.data()),
                   static_cast<CFIndex>(field.size()), nullptr);
  CFRelease(string);
}

#else

void StoreUtf16(bool big_endian, ByteSpan units, std::span<char> field) {
  const iconv_t converter = iconv_open("UTF-8", big_endian ? "UTF-16BE" : "UTF-16LE");
  if (converter == reinterpret_cast<iconv_t>(-1)) return;
  char* from = reinterpret_cast<char*>(const_cast<std::uint8_t*>(units.data()));
  std::size_t from_left = units.size();
  char* to = field.data();
  std::size_t to_left = field.size();
  // Stops between two characters when the field is full; a surrogate without its other half makes
  // it stop in front of it, also at the end.
  while (iconv(converter, &from, &from_left, &to, &to_left) == static_cast<std::size_t>(-1)) {
    constexpr char kReplacement[] = {'\xef', '\xbf', '\xbd'};
    if (errno == E2BIG || from_left < 2 || to_left < sizeof kReplacement) break;
    std::memcpy(to, kReplacement, sizeof kReplacement);
    to += sizeof kReplacement;
    to_left -= sizeof kReplacement;
    from += 2;
    from_left -= 2;
  }
  iconv_close(converter);
}

#endif

bool IsMark(ByteSpan text, std::uint8_t first, std::uint8_t second) {
  return text.size() >= 2 && text[0] == first && text[1] == second;
}

}  // namespace

std::optional<ByteSpan> TakeTerminatedText(TextEncoding encoding, ByteSpan& bytes) {
  const std::size_t length = TextBytes(encoding, bytes);
  const std::size_t terminator = IsUtf16(encoding) ? 2 : 1;
  if (bytes.size() - length < terminator) return std::nullopt;
  const ByteSpan text = bytes.first(length);
  bytes = bytes.subspan(length + terminator);
  return text;
}

void StoreText(TextEncoding encoding, ByteSpan text, std::span<char> field) {
  std::fill(field.begin(), field.end(), '\0');
  text = text.first(TextBytes(encoding, text));
  if (IsUtf16(encoding)) {
    const bool little_endian = IsMark(text, 0xff, 0xfe);
    if (little_endian || IsMark(text, 0xfe, 0xff)) text = text.subspan(2);
    StoreUtf16(!little_endian, text, field);
    return;
  }
  std::size_t length = text.size();
  if (length > field.size()) {
    length = encoding == TextEncoding::kUtf8 ? Utf8Cut(text, field.size()) : field.size();
  }
  std::copy_n(text.begin(), length, field.begin());
}

}  // namespace corvin::formats

extern "C" int CutUnicodeBOM(const unsigned char* src, int len, unsigned char* dst) {
  // Shorter ones hold no character behind a UTF-16 mark.
  if (src == nullptr || dst == nullptr || len < 4) return 0;
  int mark = 0;
  if ((src[0] == 0xff && src[1] == 0xfe) || (src[0] == 0xfe && src[1] == 0xff)) mark = 2;
  if (src[0] == 0xef && src[1] == 0xbb && src[2] == 0xbf) mark = 3;
  if (mark == 0) return 0;
  std::memmove(dst, src + mark, static_cast<std::size_t>(len - mark));
  return len - mark;
}

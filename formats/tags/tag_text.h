// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The texts of ID3v2.3 frames: their encodings, their ends, and their way into a record's field.

#ifndef CORVIN_FORMATS_TAGS_TAG_TEXT_H_
#define CORVIN_FORMATS_TAGS_TAG_TEXT_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace corvin::formats {

using ByteSpan = std::span<const std::uint8_t>;

/// The first byte of a frame that holds a text.
enum class TextEncoding : std::uint8_t {
  kLatin1 = 0,
  kUtf16 = 1,           ///< by its mark, big-endian without one
  kUtf16BigEndian = 2,  ///< unless a mark says otherwise
  kUtf8 = 3,            ///< not of ID3v2.3, yet what this library writes
};

constexpr bool IsTextEncoding(std::uint8_t byte) { return byte <= 3; }

/// Takes the text up to its terminator (two bytes in UTF-16) off the front of `bytes`, terminator
/// included. Nothing when it has none.
std::optional<ByteSpan> TakeTerminatedText(TextEncoding encoding, ByteSpan& bytes);

/// Brings a text, which ends at its terminator or with `text`, into `field`, zeroes behind it.
/// UTF-16 becomes UTF-8, ill-formed parts of it U+FFFD; other encodings stay as they are. A text
/// that is too long is cut between two characters; there is no terminator when the field is full.
void StoreText(TextEncoding encoding, ByteSpan text, std::span<char> field);

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_TAGS_TAG_TEXT_H_

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Texts of any encoding that ID3v2 knows, as UTF-8 and back. Own code: the system's converter may
// be missing, and then a text would be lost.

#ifndef CORVIN_FORMATS_TAGS_UTF8_TEXT_H_
#define CORVIN_FORMATS_TAGS_UTF8_TEXT_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "formats/tags/tag_text.h"

namespace corvin::formats {

/// Whether a text is UTF-8 by the strict rules, which exclude overlong forms and surrogates.
bool IsUtf8(std::string_view text);

/// A text of unknown encoding: UTF-8 stays what it is, anything else is taken as ISO 8859-1.
std::string Utf8OfUnknown(std::string_view text);

/// The bytes of ISO 8859-1; nothing when that lacks a character.
std::optional<std::string> Latin1Of(std::string_view utf8);

/// UTF-16, the least significant byte first, behind its mark.
std::string Utf16Of(std::string_view utf8);

/// The texts of a frame, one after the other.
class TextReader {
 public:
  TextReader(TextEncoding encoding, ByteSpan bytes) : encoding_(encoding), bytes_(bytes) {}

  bool AtEnd() const { return bytes_.empty(); }

  /// The text up to the next terminator or to the end, in UTF-8. Ill-formed UTF-16 becomes U+FFFD;
  /// what is announced as UTF-8 and is not counts as ISO 8859-1. Of UTF-16 the latest mark holds.
  std::string Next();

  /// Whether a terminator stood behind the latest text.
  bool was_terminated() const { return was_terminated_; }

  /// What is left.
  ByteSpan rest() const { return bytes_; }

 private:
  TextEncoding encoding_;
  ByteSpan bytes_;
  bool big_endian_ = true;  // what no mark has told otherwise
  bool was_terminated_ = false;
};

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_TAGS_UTF8_TEXT_H_

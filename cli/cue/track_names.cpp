// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/cue/track_names.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "cli/words/failure.h"
#include "cli/words/letters.h"
#include "cli/words/unicode_text.h"

namespace corvin::cli {
namespace {

constexpr size_t kMostBytes = 255;

struct Field {
  const char* name;
  const char* tag;
};

constexpr Field kFields[] = {
    {"track", "TRACKNUMBER"}, {"total", "TRACKTOTAL"}, {"title", "TITLE"},
    {"artist", "ARTIST"},     {"album", "ALBUM"},      {"albumartist", "ALBUMARTIST"},
    {"disc", "DISCNUMBER"},   {"date", "DATE"},        {"genre", "GENRE"},
    {"composer", "COMPOSER"}, {"isrc", "ISRC"},
};

Failure bad(const std::string& why) { return {kUsage, "--name", why}; }

// Cut after a character.
std::string cut(std::string text, size_t bytes) {
  if (text.size() <= bytes) return text;
  while (bytes > 0 && (static_cast<uint8_t>(text[bytes]) & 0xc0) == 0x80) --bytes;
  text.resize(bytes);
  return text;
}

std::string safe(const std::string& text) {
  std::string name = printable(text);
  std::replace(name.begin(), name.end(), '/', '_');
  const size_t begin = std::min(name.find_first_not_of(' '), name.size());
  name = name.substr(begin, name.find_last_not_of(' ') + 1 - begin);
  if (name.starts_with('.')) name[0] = '_';
  return name.empty() ? "track" : name;
}

}  // namespace

NamePattern::NamePattern(const std::string& text, bool may_be_plain) {
  if (text.find('/') != std::string::npos)
    throw bad("makes names, which have no slash; -O names a directory");
  std::string_view rest = text;
  while (!rest.empty()) {
    const size_t open = std::min(rest.find('{'), rest.size());
    if (open > 0) parts_.push_back({.text = std::string(rest.substr(0, open)), .field = ""});
    rest.remove_prefix(open);
    if (rest.empty()) break;
    const size_t close = rest.find('}');
    if (close == std::string_view::npos) throw bad("has a { without its }");
    const std::string inside(rest.substr(1, close - 1));
    rest.remove_prefix(close + 1);
    const size_t colon = inside.find(':');
    const std::string name = lower_case(inside.substr(0, colon));
    const auto* field = std::find_if(std::begin(kFields), std::end(kFields),
                                     [&](const Field& one) { return one.name == name; });
    if (field == std::end(kFields))
      throw bad("knows no {" + inside +
                "}, but track, total, title, artist, album, albumartist, disc, date, genre, "
                "composer and isrc");
    size_t width = 0;
    if (colon != std::string::npos) {
      const std::string digits = inside.substr(colon + 1);
      if (digits.size() != 2 || digits[0] != '0' || digits[1] < '1' || digits[1] > '9')
        throw bad("has a width in {" + inside + "} that is not 01 to 09");
      width = static_cast<size_t>(digits[1] - '0');
    }
    parts_.push_back({.text = "", .field = field->tag, .width = width});
  }
  const auto is_field = [](const Part& part) { return !part.field.empty(); };
  if (!may_be_plain && std::none_of(parts_.begin(), parts_.end(), is_field))
    throw bad("has no field in braces, so all tracks would have one name");
}

std::string NamePattern::text_for(const TagSet& tags, const std::string& untitled) const {
  std::string text;
  for (const Part& part : parts_) {
    std::string value = part.field.empty() ? part.text : tags.value(part.field);
    if (part.field == "TITLE" && value.empty()) value = untitled;
    if (part.field == "ALBUMARTIST" && value.empty()) value = tags.value("ARTIST");
    if (value.size() < part.width) value.insert(0, part.width - value.size(), '0');
    text += value;
  }
  return text;
}

std::string file_name(const std::string& text, const std::string& ending) {
  return cut(safe(text), kMostBytes - ending.size()) + ending;
}

std::string FileNames::name_for(const std::string& text, const std::string& ending) {
  for (size_t number = 1;; ++number) {
    const std::string last = (number > 1 ? " (" + std::to_string(number) + ")" : "") + ending;
    std::string name = file_name(text, last);
    if (taken_.insert(lower_case(name)).second) return name;
  }
}

}  // namespace corvin::cli

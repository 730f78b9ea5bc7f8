// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The writing half of cue_sheet.h.

#include <cstdio>

#include "cli/cue/cue_sheet.h"
#include "cli/words/unicode_text.h"

namespace corvin::cli {
namespace {

// The format has no way to write a quote within quotes.
std::string in_quotes(const std::string& text) {
  std::string line = printable(text);
  for (char& c : line)
    if (c == '"') c = '\'';
  return "\"" + line + "\"";
}

struct Word {
  const char* word;
  const char* field;
  bool is_quoted;
};

constexpr Word kOfWhole[] = {
    {"REM GENRE", "GENRE", true},
    {"REM DATE", "DATE", true},
    {"REM DISCNUMBER", "DISCNUMBER", false},
    {"REM TOTALDISCS", "DISCTOTAL", false},
    {"REM COMMENT", "COMMENT", true},
    {"CATALOG", "BARCODE", false},
    {"PERFORMER", "ALBUMARTIST", true},
    {"SONGWRITER", "COMPOSER", true},
    {"TITLE", "ALBUM", true},
};

constexpr Word kOfTrack[] = {
    {"TITLE", "TITLE", true},
    {"PERFORMER", "ARTIST", true},
    {"SONGWRITER", "COMPOSER", true},
    {"ISRC", "ISRC", false},
};

template <size_t count>
std::string lines(const Word (&words)[count], const CueFields& fields, const char* indent) {
  std::string text;
  for (const Word& word : words)
    if (const std::string value = field_value(fields, word.field); !value.empty())
      text += indent + std::string(word.word) + " " +
              (word.is_quoted ? in_quotes(value) : printable(value)) + "\n";
  return text;
}

std::string time_text(uint64_t position, uint32_t units_per_second) {
  const uint64_t frames =
      position / units_per_second * 75 +
      (position % units_per_second * 75 + units_per_second / 2) / units_per_second;
  char text[64];
  std::snprintf(text, sizeof text, "%02llu:%02u:%02u",
                static_cast<unsigned long long>(frames / 75 / 60),
                static_cast<unsigned>(frames / 75 % 60), static_cast<unsigned>(frames % 75));
  return text;
}

}  // namespace

std::string cue_text(const CueSheet& sheet) {
  std::string text = lines(kOfWhole, sheet.fields, "");
  text += "FILE " + in_quotes(sheet.files.front()) + " WAVE\n";
  for (const CueTrack& track : sheet.tracks) {
    char number[32];
    std::snprintf(number, sizeof number, "  TRACK %02u AUDIO\n", track.number);
    text += number + lines(kOfTrack, track.fields, "    ") + "    INDEX 01 " +
            time_text(track.begin.position, sheet.units_per_second) + "\n";
  }
  return text;
}

}  // namespace corvin::cli

// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The reading half of cue_sheet.h. Sheets come from many hands: what they may leave out or spell
// otherwise is taken as it was meant, but never a place that would cut the sound where nobody asked
// for it.

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <iterator>

#include "cli/cue/cue_sheet.h"
#include "cli/words/failure.h"
#include "cli/words/letters.h"
#include "cli/words/loudness.h"
#include "cli/words/unicode_text.h"

namespace corvin::cli {
namespace {

// A hundred times what the sheet of a full disc takes.
constexpr size_t kMostBytes = size_t{1} << 20;
constexpr uint32_t kMostTracks = 999;
constexpr uint64_t kMostMinutes = 99999;

// What Windows-1252 has in the place of ISO 8859-1's second set of control characters.
constexpr const char* kWindows1252[] = {"€", "?", "‚", "ƒ", "„", "…", "†", "‡", "ˆ", "‰", "Š",
                                        "‹", "Œ", "?", "Ž", "?", "?", "‘", "’", "“", "”", "•",
                                        "–", "—", "˜", "™", "š", "›", "œ", "?", "ž", "Ÿ"};

std::string decoded(std::string_view text, const std::string& name) {
  if (text.starts_with("\xff\xfe") || text.starts_with("\xfe\xff"))
    throw Failure(kBadInput, name, "is a cue sheet in UTF-16; saved as UTF-8 it can be read");
  if (text.starts_with("\xef\xbb\xbf")) text.remove_prefix(3);
  if (utf8_of(text) == text) return std::string(text);
  note(name, "is no UTF-8 and is read as Windows-1252");
  std::string result;
  for (const char c : text) {
    const auto byte = static_cast<uint8_t>(c);
    if (byte >= 0x80 && byte < 0xa0)
      result += kWindows1252[byte - 0x80];
    else
      result += byte < 0x80 ? std::string(1, c) : utf8_of(std::string_view(&c, 1));
  }
  return result;
}

bool is_blank(char c) { return c == ' ' || c == '\t'; }

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
  return text;
}

std::string upper_case(std::string_view text) {
  std::string upper(text);
  for (char& c : upper)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - ('a' - 'A'));
  return upper;
}

// Remarks that are fields, for the whole or a track.
constexpr const char* kRemarks[] = {"GENRE",    "DATE",      "COMMENT",    "DISCNUMBER",
                                    "COMPOSER", "DISCTOTAL", "TOTALDISCS", "LABEL"};

class Parser {
 public:
  explicit Parser(const std::string& name) : name_(name) {}

  CueSheet parse(std::string_view text) {
    while (!text.empty()) {
      const size_t end = text.find_first_of("\r\n");
      take_line(trimmed(text.substr(0, end)));
      const bool is_pair = end != std::string_view::npos && text.substr(end, 2) == "\r\n";
      text.remove_prefix(end == std::string_view::npos ? text.size() : end + (is_pair ? 2 : 1));
    }
    end_track();
    if (sheet_.tracks.empty())
      throw Failure(kBadInput, name_, "is no cue sheet: there are no tracks in it");
    return std::move(sheet_);
  }

 private:
  Failure bad(const std::string& what, size_t line = 0) const {
    return {kBadInput, name_, "line " + std::to_string(line != 0 ? line : line_) + ": " + what};
  }

  // The next word, which is taken off.
  static std::string_view word(std::string_view& rest) {
    const size_t end = std::min(rest.find_first_of(" \t"), rest.size());
    const std::string_view first = rest.substr(0, end);
    rest = trimmed(rest.substr(end));
    return first;
  }

  // The text between the first and the last quote, for names may hold quotes themselves; what stands
  // behind is left.
  std::string quoted(std::string_view& rest) const {
    if (!rest.starts_with('"')) {
      const std::string all(rest);
      rest = {};
      return all;
    }
    const size_t end = rest.rfind('"');
    if (end == 0) throw bad("a quote does not end");
    const std::string text(rest.substr(1, end - 1));
    rest = trimmed(rest.substr(end + 1));
    return text;
  }

  // 0 to 999999, of decimal digits alone.
  std::optional<uint32_t> number(std::string_view text) const {
    uint32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool is_whole = error == std::errc() && end == text.data() + text.size();
    return is_whole && value < 1000000 ? std::optional(value) : std::nullopt;
  }

  uint64_t position(std::string_view text) const {
    std::optional<uint32_t> parts[3];
    std::string_view rest = text;
    for (size_t i = 0; i < 3; ++i) {
      const size_t colon = i < 2 ? rest.find(':') : rest.size();
      if (colon == std::string_view::npos) break;
      parts[i] = number(rest.substr(0, colon));
      rest.remove_prefix(std::min(colon + 1, rest.size()));
    }
    const bool is_time = parts[0] && parts[1] && parts[2] && *parts[0] <= kMostMinutes &&
                         *parts[1] < 60 && *parts[2] < 75;
    if (!is_time)
      throw bad("\"" + std::string(text.substr(0, 40)) +
                "\" is no time of minutes, seconds and frames (MM:SS:FF, FF up to 74)");
    return (uint64_t{*parts[0]} * 60 + *parts[1]) * 75 + *parts[2];
  }

  // Of the track, once there is one, else of the whole.
  void set(const char* of_track, const char* of_whole, std::string value) {
    value = trimmed(value);
    if (value.empty()) return;
    CueFields& fields = track_ ? track_->fields : sheet_.fields;
    const std::string name = track_ ? of_track : of_whole;
    std::erase_if(fields, [&](const auto& field) { return field.first == name; });
    fields.emplace_back(name, std::move(value));
  }

  void take_line(std::string_view line) {
    ++line_;
    if (line.empty()) return;
    if (line.find('\0') != std::string_view::npos) throw bad("holds bytes that are no text");
    std::string_view rest = line;
    const std::string command = upper_case(word(rest));
    if (command == "REM") return take_remark(rest);
    if (command == "TITLE") return set("TITLE", "ALBUM", quoted(rest));
    if (command == "PERFORMER") return set("ARTIST", "ALBUMARTIST", quoted(rest));
    if (command == "SONGWRITER") return set("COMPOSER", "COMPOSER", quoted(rest));
    if (command == "ISRC") return set("ISRC", "ISRC", quoted(rest));
    if (command == "CATALOG") return set("BARCODE", "BARCODE", quoted(rest));
    if (command == "FILE") return take_file(rest);
    if (command == "TRACK") return take_track(rest);
    if (command == "INDEX") return take_index(rest);
    if (command == "FLAGS") return take_flags(rest);
    // Silence that is in no file, and texts in another file, are nothing to cut by.
    if (command == "PREGAP" || command == "POSTGAP" || command == "CDTEXTFILE") return;
    note_detail(name_, "line " + std::to_string(line_) + ": " + command.substr(0, 40) +
                           " is not known and passed over");
  }

  void take_remark(std::string_view rest) {
    const std::string key = upper_case(word(rest));
    const bool is_field =
        std::find(std::begin(kRemarks), std::end(kRemarks), key) != std::end(kRemarks);
    if (!is_field && !key.starts_with("REPLAYGAIN_")) return;
    const std::string field = key == "TOTALDISCS" ? "DISCTOTAL" : key;
    set(field.c_str(), field.c_str(), quoted(rest));
  }

  void take_file(std::string_view rest) {
    std::string name;
    if (rest.starts_with('"')) {
      name = quoted(rest);
    } else {
      // The last word is the type.
      const size_t end = std::min(rest.find_last_of(" \t"), rest.size());
      name = trimmed(rest.substr(0, end));
    }
    if (name.empty()) throw bad("FILE without a name");
    if (sheet_.files.size() == kMostTracks) throw bad("too many files");
    sheet_.files.push_back(std::move(name));
    is_file_used_ = false;
  }

  void take_track(std::string_view rest) {
    const std::string_view text = word(rest);
    const auto value = number(text);
    if (!value || *value == 0 || *value > kMostTracks)
      throw bad("\"" + std::string(text.substr(0, 40)) + "\" is no number of a track");
    if (sheet_.files.empty()) throw bad("TRACK comes before any FILE");
    end_track();
    if (!sheet_.tracks.empty() && *value <= sheet_.tracks.back().number)
      throw bad("track " + std::to_string(*value) + " comes behind track " +
                std::to_string(sheet_.tracks.back().number));
    track_.emplace();
    track_->number = *value;
    const std::string type = upper_case(word(rest));
    track_->is_sound = type.empty() || type == "AUDIO";
    track_line_ = line_;
    has_begin_ = false;
    next_index_ = 0;
  }

  void take_index(std::string_view rest) {
    const auto value = number(word(rest));
    if (!track_) throw bad("INDEX comes before any TRACK");
    if (!value || *value > 99) throw bad("INDEX without a number from 00 to 99");
    if (*value < next_index_) throw bad("INDEX numbers do not go up");
    next_index_ = *value + 1;
    const CuePlace place{.file = sheet_.files.size() - 1, .position = position(word(rest))};
    if (is_file_used_ && place.position < last_position_)
      throw bad("INDEX lies before the one above it");
    is_file_used_ = true;
    last_position_ = place.position;
    if (*value == 0) track_->pause = place;
    if (*value == 1) {
      track_->begin = place;
      has_begin_ = true;
    }
  }

  void take_flags(std::string_view rest) {
    while (!rest.empty())
      if (upper_case(word(rest)) == "PRE" && track_) track_->has_emphasis = true;
  }

  void end_track() {
    if (!track_) return;
    if (!has_begin_)
      throw bad("track " + std::to_string(track_->number) + " has no INDEX 01", track_line_);
    sheet_.tracks.push_back(std::move(*track_));
    track_.reset();
  }

  const std::string name_;
  CueSheet sheet_;
  size_t line_ = 0;
  std::optional<CueTrack> track_;
  size_t track_line_ = 0;
  bool has_begin_ = false;
  uint32_t next_index_ = 0;
  bool is_file_used_ = false;  // by an INDEX, the last one at
  uint64_t last_position_ = 0;
};

}  // namespace

std::string field_value(const CueFields& fields, std::string_view name) {
  const auto found = std::find_if(fields.begin(), fields.end(),
                                  [&](const auto& field) { return field.first == name; });
  return found == fields.end() ? "" : found->second;
}

CueSheet parse_cue(std::string_view text, const std::string& name) {
  if (text.size() > kMostBytes)
    throw Failure(kBadInput, name, "is no cue sheet: it is larger than 1 MiB");
  return Parser(name).parse(decoded(text, name));
}

CueSheet read_cue(const std::string& path) {
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  std::string text(kMostBytes + 1, '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  if (file.bad() || (file.fail() && !file.eof()))
    throw Failure(kBadInput, path, errno != 0 ? std::strerror(errno) : "cannot be read");
  text.resize(static_cast<size_t>(file.gcount()));
  return parse_cue(text, path);
}

}  // namespace corvin::cli

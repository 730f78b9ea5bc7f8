// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Cue sheets: where in one or several files the tracks of an album begin, and what they are called.
// Here is what a sheet says, and its text read and written; which files it means and where tracks end
// is decided by who splits.

#ifndef CORVIN_CLI_CUE_CUE_SHEET_H_
#define CORVIN_CLI_CUE_CUE_SHEET_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace corvin::cli {

/** A place in one of the sheet's files. */
struct CuePlace {
  size_t file = 0;        // of the sheet's, counted from 0
  uint64_t position = 0;  // in the sheet's units
};

/** What is said of a track or of the whole, by the names that tags have: "TITLE", "ARTIST",
 *  "COMPOSER", "ISRC", "GENRE"... UTF-8. */
using CueFields = std::vector<std::pair<std::string, std::string>>;

struct CueTrack {
  uint32_t number = 0;
  bool is_sound = true;           // not data
  std::optional<CuePlace> pause;  // INDEX 00: where what leads in to the track begins
  CuePlace begin;                 // INDEX 01
  CueFields fields;
  bool has_emphasis = false;  // by its flags
};

struct CueSheet {
  uint32_t units_per_second = 75;  // of positions
  std::vector<std::string> files;  // as the sheet names them
  std::vector<CueTrack> tracks;    // at least one
  CueFields fields;                // "ALBUM", "ALBUMARTIST", "BARCODE", "DATE", "DISCNUMBER"...
};

/** The value of the first field of that name; empty: there is none. */
std::string field_value(const CueFields& fields, std::string_view name);

/** Reads a sheet: UTF-8, with a mark or without, or Windows-1252, which is told.
 *  @param name  of it in messages. Throws Failure with the number of the line that makes no sense;
 *               words that are not known are passed over */
CueSheet parse_cue(std::string_view text, const std::string& name);

/** The sheet in the file at `path`. Throws Failure. */
CueSheet read_cue(const std::string& path);

/** The text of a sheet of one file. Positions are rounded to the nearest of 75 in a second. */
std::string cue_text(const CueSheet& sheet);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CUE_CUE_SHEET_H_

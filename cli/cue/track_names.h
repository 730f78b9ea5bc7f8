// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Names of files for tracks, by a pattern of their tags: "{track:02} {title}".

#ifndef CORVIN_CLI_CUE_TRACK_NAMES_H_
#define CORVIN_CLI_CUE_TRACK_NAMES_H_

#include <set>
#include <string>
#include <vector>

#include "corvin.hpp"

namespace corvin::cli {

/** A pattern that was understood. */
class NamePattern {
 public:
  /** Throws Failure, kUsage.
   *  @param may_be_plain  it need not have a field */
  explicit NamePattern(const std::string& text, bool may_be_plain = false);

  /** The text for these tags; a field that they lack is empty, but a title is `untitled`. */
  std::string text_for(const TagSet& tags, const std::string& untitled) const;

 private:
  struct Part {
    std::string text;   // as it is
    std::string field;  // or the name of a tag's field
    size_t width = 0;   // filled up with zeros before it
  };
  std::vector<Part> parts_;
};

/** A name that any directory takes out of any text and an ending such as ".dsf": without slashes,
 *  control characters and a point at its beginning, of up to 255 bytes. */
std::string file_name(const std::string& text, const std::string& ending);

/** Names of files, none of them twice. */
class FileNames {
 public:
  /** A file_name() that was not given out, in letters of either case. */
  std::string name_for(const std::string& text, const std::string& ending);

 private:
  std::set<std::string> taken_;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CUE_TRACK_NAMES_H_
